#include "host/HfsPath.h"

#include "app/Strings.h"
#include "host/ScriptRunner.h"

#include <QDir>

namespace quillon::host {

QString hfsPathFromPath(ScriptRunner& scripts, const QString& path, QVariantMap* errDict)
{
    QString expanded = path;
    if (expanded == QLatin1String("~") || expanded.startsWith(QLatin1String("~/")))
        expanded.replace(0, 1, QDir::homePath());
    const QString escaped = app::stringByEscapingCharacters(expanded, {QStringLiteral("\"")});
    const QVariantMap outcome =
        scripts.runAppleScriptWithSourceString(QStringLiteral("(\"%1\" as POSIX file) as string").arg(escaped));
    if (!scriptSucceeded(outcome)) {
        if (errDict)
            *errDict = scriptErrorDict(outcome);
        return {};
    }
    return scriptResultString(outcome);
}

} // namespace quillon::host
