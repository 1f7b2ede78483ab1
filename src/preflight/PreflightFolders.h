#pragma once

#include <QString>

namespace quillon::preflight {

// Where one preflight keeps its files. The desktop application uses the system's folders; each
// document of a command-line run gets folders of its own, so documents preflighted at the same
// time never share (or remove) each other's files.
struct PreflightFolders {
    // Receives the three data files ("qnf_tmpLinkData.plist" and the others) at its top level.
    QString dataFolder;
    // Holds the exported IDML and its unpacked folder; emptied after every successful preflight.
    QString workFolder;

    // The system temporary folder and the "Quillon" folder inside it.
    static PreflightFolders systemFolders();
    // `root` for the data files and "Quillon" inside it for the work, made when missing (the work
    // falls back to `root` when it cannot be made, as the system's does).
    static PreflightFolders inside(const QString& root);
};

} // namespace quillon::preflight
