#include "cli/PreflightOutput.h"

#include "app/RecordKeys.h"
#include "app/Records.h"
#include "cli/JsonOutput.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"
#include "results/ResultRows.h"

#include <QJsonArray>

#include <vector>

namespace quillon::cli {

namespace {

// The members of a document's object other than its record lists: "path", "name", "warnings",
// then "info", "document", "summary", "counts" and "status", or "error" when it could not be
// preflighted.
QJsonObject documentJson(const PreflightedDocument& document)
{
    QJsonObject object =
        jsonFileEntry(document.path, document.warnings, document.preflighted ? QString() : document.error);
    object.insert(QStringLiteral("name"), document.name);
    if (!document.preflighted)
        return object;
    object.insert(QStringLiteral("info"), documentInfoJson(document.info));
    // Checks of the document itself (bleed, page sizes) raise their alerts here.
    QJsonArray documentAlerts;
    for (const results::DocumentAlert& alert : document.documentChecks.alerts)
        documentAlerts.append(QJsonObject{{QStringLiteral("rule"), alert.rule}, {QStringLiteral("text"), alert.text}});
    object.insert(QStringLiteral("document"), QJsonObject{{QStringLiteral("alerts"), documentAlerts}});
    object.insert(QStringLiteral("summary"), jsonValue(document.summary));
    const results::PreflightStatus& status = document.status;
    object.insert(QStringLiteral("counts"), QJsonObject{{QStringLiteral("fonts"), status.fonts},
                                                        {QStringLiteral("colors"), status.colors},
                                                        {QStringLiteral("links"), status.links},
                                                        {QStringLiteral("document"), status.document},
                                                        {QStringLiteral("total"), status.total}});
    object.insert(QStringLiteral("status"), status.text);
    return object;
}

} // namespace

void writeDocumentJson(std::ostream& stream, const PreflightedDocument& document, int depth)
{
    std::vector<RecordListMember> lists;
    if (document.preflighted) {
        // Judged lists are grouped: their records are written one after the other.
        lists.push_back({QStringLiteral("links"), results::flatRecords(document.links), RecordKind::Link});
        lists.push_back({QStringLiteral("fonts"), results::flatRecords(document.fonts), RecordKind::FontOrColor});
        lists.push_back({QStringLiteral("colors"), results::flatRecords(document.colors), RecordKind::FontOrColor});
    }
    writeObjectWithRecords(stream, documentJson(document), lists, depth);
}

} // namespace quillon::cli
