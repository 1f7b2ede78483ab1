#include "preflight/DocumentWarnings.h"

#include "host/InDesignHost.h"

#include <QSet>

using namespace quillon::host;

namespace quillon::preflight {

app::Error repairedArchiveWarning()
{
    return app::makeError(QStringLiteral("the archive is damaged (truncated or badly written) and was read from a copy "
                                         "repaired with zip -FF: parts of the document may be missing"));
}

std::optional<app::Error> noPagesWarning(const inspection::DocumentRecord& record)
{
    if (record.pageCount.trimmed() != QLatin1String("0"))
        return std::nullopt;
    return app::makeError(QStringLiteral("the document has no pages"));
}

void addWarningsOnce(QList<app::Error>& warnings, const QList<app::Error>& more)
{
    QSet<QString> seen;
    for (const app::Error& warning : std::as_const(warnings))
        seen.insert(warning.text());
    for (const app::Error& warning : more)
        if (!seen.contains(warning.text())) {
            seen.insert(warning.text());
            warnings.append(warning);
        }
}

QStringList warningTexts(const QList<app::Error>& warnings)
{
    QStringList texts;
    texts.reserve(warnings.size());
    for (const app::Error& warning : warnings)
        texts << warning.text();
    return texts;
}

} // namespace quillon::preflight
