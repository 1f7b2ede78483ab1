#pragma once

#include <QString>

namespace quillon::app {

// The application-support folder: "~/Library/Application Support/Tornvale/Quillon" on macOS,
// "$XDG_DATA_HOME/Tornvale/Quillon" on Linux. QUILLON_SUPPORT_DIR, when set, takes its place
// (tests and private runs). Not created here.
QString applicationSupportFolder();

// The system temporary folder, or the folder set with setTemporaryFolderOverride.
QString temporaryFolder();

// Gives a run a temporary folder of its own (parallel runs of the command line must not share the
// data files). Empty restores the system's. Set before work starts; not for changing mid-run.
void setTemporaryFolderOverride(const QString& folder);

// "Quillon" inside the temporary folder, made when missing; the temporary folder itself when it
// cannot be made.
QString workFolder();

} // namespace quillon::app
