#pragma once

#include <QString>
#include <QVariantMap>

namespace quillon::host {

class ScriptRunner;

// The HFS form of a POSIX path ("Macintosh HD:Users:ann:Doc.idml"), asked of the script runner
// after a leading "~" is expanded. "" on failure, when `errDict` (if given) receives the
// outcome's "error" dictionary; callers then fall back to the POSIX path.
QString hfsPathFromPath(ScriptRunner& scripts, const QString& path, QVariantMap* errDict = nullptr);

} // namespace quillon::host
