#pragma once

#include <QString>

namespace quillon::app {

// The application-support folder: "~/Library/Application Support/Tornvale/Quillon" on macOS,
// "$XDG_DATA_HOME/Tornvale/Quillon" on Linux. QUILLON_SUPPORT_DIR, when set, takes its place
// (tests and private runs). Not created here.
QString applicationSupportFolder();

// The system temporary folder, or the folder set with setTemporaryFolderOverride. A TMPDIR that
// names no folder gives /tmp. Code that makes a private folder takes its place from here.
QString temporaryFolder();

// Replaces the system temporary folder for the whole process (tests). Work that runs several
// documents at once passes its folders explicitly instead. Empty restores the system's.
void setTemporaryFolderOverride(const QString& folder);

// "Quillon" inside the temporary folder, made when missing; the temporary folder itself when it
// cannot be made.
QString workFolder();

} // namespace quillon::app
