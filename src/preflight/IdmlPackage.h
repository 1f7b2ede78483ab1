#pragma once

#include "app/Result.h"
#include "preflight/IdmlArchive.h"

#include <QString>

namespace quillon::preflight {

// The zip tool used for repairs: "zip" on the search path, else "/usr/bin/zip".
QString defaultZipTool();

// Has the zip tool salvage what it can of a damaged archive ("-FF") into `repairedPath`, which is
// replaced. The tool's questions are answered on its input (single-disk archive, then quit at any
// question about missing parts), and it is stopped when it runs too long, prints too much or
// writes far more than the damaged archive holds: on some damage it otherwise loops forever.
// Answers the tool's output.
app::Result<QString> repairArchiveWithZip(const QString& path, const QString& repairedPath,
                                          const QString& zipTool = defaultZipTool());

// Refuses an archive that is not a whole IDML package: designmap.xml must be there and readable,
// and every part it lists (spreads, stories, resources) must be in the archive. A truncated
// package that was salvaged by a repair fails here. Errors name the archive's reported name.
app::Status checkIdmlStructure(const IdmlArchive& archive);

// Opens an IDML for reading: as it is when the archive is sound, otherwise from a repaired copy
// at `repairedPath`. Either way the package must be whole. `repaired`, when given, tells which.
app::Result<IdmlArchive> openIdmlPackage(const QString& path, const QString& repairedPath, bool* repaired = nullptr,
                                         const QString& zipTool = defaultZipTool());

} // namespace quillon::preflight
