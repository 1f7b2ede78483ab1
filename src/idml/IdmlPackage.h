#pragma once

#include "app/Result.h"
#include "idml/IdmlArchive.h"

#include <QString>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::idml {

// The zip tool used for repairs: "zip" on the search path, else "/usr/bin/zip".
QString defaultZipTool();

// Refuses at once, naming `reportedName`, a file that does not start like a zip archive (a local
// file header, or the end record of an empty archive, or a split archive's marker): nothing could
// repair it. Also says "permission denied" for a file that may not be read.
app::Status checkStartsLikeZip(const QString& path, const QString& reportedName);

// Has the zip tool salvage what it can of a damaged archive ("-FF") into `repairedPath`, which is
// replaced. The tool runs in the folder of `repairedPath` and keeps its temporary files there, so
// nothing is written beside `path`. Its questions are answered on its input (single-disk archive,
// then quit at any question about missing parts), and it is stopped, with whatever it started,
// when it runs too long, prints too much, writes far more than the damaged archive holds (on some
// damage it otherwise loops forever) or when `cancel` is set. Answers the tool's output.
app::Result<QString> repairArchiveWithZip(const QString& path, const QString& repairedPath,
                                          const QString& zipTool = defaultZipTool(),
                                          const app::CancelFlag* cancel = nullptr);

// Refuses an archive that is not a whole IDML package: its entries must be safe to unpack,
// designmap.xml must be there and readable, and every part it lists (spreads, stories,
// resources) must be in the archive. A truncated package that was salvaged by a repair fails
// here. Errors name the archive's reported name.
app::Status checkIdmlStructure(const IdmlArchive& archive, const UnpackLimits& limits = {});

// How a damaged archive is to be repaired.
struct ArchiveRepair {
    // The repaired copy. Its folder, a work folder, also takes the tool's temporary files and,
    // when the document lies elsewhere, the copy that is repaired: the document is only read.
    QString repairedPath;
    QString reportedName; // names the document in errors; empty: its path
    QString zipTool = defaultZipTool();
    const app::CancelFlag* cancel = nullptr;
};

// Opens an archive as it is when it is sound, otherwise, when it starts like a zip archive, from a
// repaired copy. `repaired`, when given, tells which. The package is not checked.
app::Result<IdmlArchive> openArchiveRepairingIt(const QString& path, const ArchiveRepair& repair,
                                                bool* repaired = nullptr);

// openArchiveRepairingIt, then checkIdmlStructure.
app::Result<IdmlArchive> openIdmlPackage(const QString& path, const ArchiveRepair& repair, bool* repaired = nullptr);
app::Result<IdmlArchive> openIdmlPackage(const QString& path, const QString& repairedPath, bool* repaired = nullptr,
                                         const QString& zipTool = defaultZipTool());

} // namespace quillon::idml
