#include "cli/PreflightOutput.h"

#include "app/RecordKeys.h"
#include "app/Records.h"
#include "cli/JsonOutput.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"
#include "results/ResultRows.h"

#include <QJsonArray>

#include <map>
#include <ostream>
#include <string>

namespace quillon::cli {

namespace {

// The records of a list, the children of document groups in their place.
QVariantList flatRecords(const QVariantList& rows)
{
    QVariantList records;
    for (const QVariant& row : rows) {
        const QVariantMap map = row.toMap();
        if (results::isGroupRow(map))
            records += map.value(app::kGroupChildrenKey).toList();
        else
            records += row;
    }
    return records;
}

QString recordTitle(const QVariantMap& record, bool isLink)
{
    const QString name = record.value(app::kNameKey).toString();
    const QString page = record.value(links::kLinkPageKey).toString();
    if (isLink && !page.isEmpty())
        return QStringLiteral("%1 (page %2)").arg(name, page);
    return name;
}

QString listSection(const QString& title, const QVariantList& rows, bool isLink)
{
    const QVariantList records = flatRecords(rows);
    QVariantList alerted;
    for (const QVariant& record : records)
        if (results::hasAlerts(record.toMap()))
            alerted << record;
    QString text = QStringLiteral("\n  %1: ").arg(title);
    if (records.isEmpty())
        return text + QStringLiteral("none\n");
    text += QStringLiteral("%1, %2 with alerts\n")
                .arg(records.size())
                .arg(alerted.isEmpty() ? QStringLiteral("none") : QString::number(alerted.size()));
    for (const QVariant& item : alerted) {
        const QVariantMap record = item.toMap();
        text += QStringLiteral("    %1\n").arg(recordTitle(record, isLink));
        const QVariantMap alerts = record.value(results::kAlertsKey).toMap();
        for (const QVariant& value : alerts)
            for (const QString& alert : results::alertTexts(value))
                text += QStringLiteral("      - %1\n").arg(alert);
    }
    return text;
}

std::string indentation(int depth)
{
    return std::string(static_cast<size_t>(depth) * 4, ' ');
}

QString orDash(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
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
    object.insert(QStringLiteral("document"), QJsonObject{{QStringLiteral("alerts"), QJsonArray()}});
    object.insert(QStringLiteral("summary"), jsonValue(document.summary));
    const results::PreflightStatus& status = document.status;
    object.insert(QStringLiteral("counts"), QJsonObject{{QStringLiteral("fonts"), status.fonts},
                                                        {QStringLiteral("colors"), status.colors},
                                                        {QStringLiteral("links"), status.links},
                                                        {QStringLiteral("document"), 0},
                                                        {QStringLiteral("total"), status.total}});
    object.insert(QStringLiteral("status"), status.text);
    return object;
}

} // namespace

void writeDocumentJson(std::ostream& stream, const PreflightedDocument& document, int depth)
{
    // The record lists are written one record at a time: as one JSON tree, or one text, 200,000
    // links cost gigabytes.
    using RecordJson = QJsonObject (*)(const QVariantMap&);
    struct RecordList {
        const QVariantList* rows = nullptr;
        RecordJson toJson = nullptr;
    };
    const QJsonObject small = documentJson(document);
    std::map<QString, RecordList> members;
    for (auto it = small.constBegin(); it != small.constEnd(); ++it)
        members.emplace(it.key(), RecordList{});
    if (document.preflighted) {
        members.emplace(QStringLiteral("links"), RecordList{&document.links, &linkJson});
        members.emplace(QStringLiteral("fonts"), RecordList{&document.fonts, &recordJson});
        members.emplace(QStringLiteral("colors"), RecordList{&document.colors, &recordJson});
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
        const QVariantList records = flatRecords(*list.rows);
        out += records.isEmpty() ? "[" : "[\n";
        for (qsizetype i = 0; i < records.size(); ++i) {
            out += indentation(depth + 2);
            appendJson(out, list.toJson(records.at(i).toMap()), depth + 2);
            out += i + 1 < records.size() ? ",\n" : "\n";
            flush(1 << 16);
        }
        out += (records.isEmpty() ? "" : indentation(depth + 1)) + "]";
    }
    out += "\n" + indentation(depth) + "}";
    flush(0);
}

QString summaryText(const PreflightedDocument& document, const QString& presetName)
{
    const inspection::QNDocInfo& info = document.info;
    const QList<std::pair<QString, QString>> lines{
        {QStringLiteral("Path"), info.docPath()},
        {QStringLiteral("Pages"),
         QStringLiteral("%1 (InDesign %2)").arg(orDash(info.numberOfPagesStr()), orDash(info.InDesignVersion()))},
        {QStringLiteral("Size"), info.fileSizeStr()},
        {QStringLiteral("Modified"), orDash(info.modDateStr())},
        {QStringLiteral("Page size"), info.pageSizeStr()},
        {QStringLiteral("Bleed"), orDash(info.bleedStr())},
        {QStringLiteral("Slug"), orDash(info.slugStr())},
        {QStringLiteral("Preset"), presetName},
        {QStringLiteral("Result"), document.status.text},
    };
    QString text = document.name + u'\n';
    for (const auto& [label, value] : lines)
        text += QStringLiteral("  %1%2\n").arg((label + u':').leftJustified(12), value);
    // Under the status line, so that a result with warnings never reads as clean alone.
    if (!document.warnings.isEmpty()) {
        text += QStringLiteral("  %1%2 (the result may be incomplete)\n")
                    .arg(QStringLiteral("Warnings:").leftJustified(12))
                    .arg(document.warnings.size());
        for (const QString& warning : document.warnings)
            text += QStringLiteral("    - %1\n").arg(warning);
    }
    text += listSection(QStringLiteral("Fonts"), document.fonts, false);
    text += listSection(QStringLiteral("Colors"), document.colors, false);
    text += listSection(QStringLiteral("Links"), document.links, true);
    return text;
}

} // namespace quillon::cli
