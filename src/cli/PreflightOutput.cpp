#include "cli/PreflightOutput.h"

#include "app/ParallelFor.h"
#include "app/RecordKeys.h"
#include "app/Records.h"
#include "cli/JsonOutput.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"
#include "results/ResultRows.h"

#include <QJsonArray>

#include <algorithm>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace quillon::cli {

namespace {

std::string indentation(int depth)
{
    return std::string(static_cast<size_t>(depth) * 4, ' ');
}

} // namespace

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
    // The record lists are written one record at a time: as one JSON tree, or one text, 200,000
    // links cost gigabytes.
    struct RecordList {
        const QVariantList* rows = nullptr;
        RecordKind kind = RecordKind::FontOrColor;
    };
    const QJsonObject small = documentJson(document);
    std::map<QString, RecordList> members;
    for (auto it = small.constBegin(); it != small.constEnd(); ++it)
        members.emplace(it.key(), RecordList{});
    if (document.preflighted) {
        members.emplace(QStringLiteral("links"), RecordList{&document.links, RecordKind::Link});
        members.emplace(QStringLiteral("fonts"), RecordList{&document.fonts, RecordKind::FontOrColor});
        members.emplace(QStringLiteral("colors"), RecordList{&document.colors, RecordKind::FontOrColor});
    }

    std::string out = indentation(depth) + "{\n";
    const auto flush = [&stream, &out](size_t above) {
        if (out.size() > above) {
            stream.write(out.data(), static_cast<std::streamsize>(out.size()));
            out.clear();
        }
    };
    bool first = true;
    for (const auto& [key, list] : members) {
        out += first ? "" : ",\n";
        first = false;
        out += indentation(depth + 1);
        appendJson(out, key, depth + 1);
        out += ": ";
        if (!list.rows) {
            appendJson(out, small.value(key), depth + 1);
            continue;
        }
        const QVariantList records = results::flatRecords(*list.rows);
        out += records.isEmpty() ? "[" : "[\n";
        // A batch of records at a time is written on several threads and joined in order.
        constexpr qsizetype kBatch = 1024;
        std::vector<std::string> batch;
        for (qsizetype begin = 0; begin < records.size(); begin += kBatch) {
            batch.assign(static_cast<size_t>(std::min(kBatch, records.size() - begin)), std::string());
            app::parallelFor(static_cast<qsizetype>(batch.size()), {.itemsPerThread = 64}, [&](int, qsizetype index) {
                const qsizetype i = begin + index;
                std::string& text = batch[static_cast<size_t>(index)];
                text = indentation(depth + 2);
                appendRecordJson(text, records.at(i).toMap(), list.kind, depth + 2);
                text += i + 1 < records.size() ? ",\n" : "\n";
            });
            for (const std::string& text : batch) {
                out += text;
                flush(1 << 16);
            }
        }
        out += (records.isEmpty() ? "" : indentation(depth + 1)) + "]";
    }
    out += "\n" + indentation(depth) + "}";
    flush(0);
}

} // namespace quillon::cli
