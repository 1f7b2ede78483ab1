#include "cli/PreflightSummary.h"

#include "app/RecordKeys.h"
#include "app/Records.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"
#include "results/ResultRows.h"

#include <QHash>

#include <algorithm>

namespace quillon::cli {

namespace {

QString orDash(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

// What the record holds for the attribute an alert is about, as it is shown.
QString measuredValue(const QVariantMap& record, const QString& key)
{
    const QString value = record.value(key).toString().trimmed();
    if (key == links::kLinkEffectiveResKey && !value.isEmpty() && value != links::kLinkNotKnown)
        return value + QStringLiteral(" ppi");
    return value;
}

// An alert with the measured value beside its rule: inside a comparison ("Effective res 18 ppi <
// 150 dpi"), after any other text unless the text already says it.
QString alertLine(const QVariantMap& record, const QString& key, const QString& alert)
{
    const QString measured = measuredValue(record, key);
    if (measured.isEmpty() || measured == links::kLinkNotKnown)
        return alert;
    for (const QLatin1String comparison : {QLatin1String(" < "), QLatin1String(" > ")})
        if (const qsizetype at = alert.indexOf(comparison); at > 0)
            return alert.left(at) + u' ' + measured + alert.mid(at);
    if (alert.contains(measured, Qt::CaseInsensitive))
        return alert;
    return QStringLiteral("%1 (%2)").arg(alert, measured);
}

QString alertLines(const QVariantMap& record)
{
    QStringList lines;
    const QVariantMap alerts = record.value(results::kAlertsKey).toMap();
    for (auto it = alerts.cbegin(); it != alerts.cend(); ++it)
        for (const QString& alert : results::alertTexts(it.value()))
            lines << alertLine(record, it.key(), alert);
    return lines.join(QStringLiteral("; "));
}

// "page 2", or "pages A, 1–4": names that are not numbers as met, then the numbers in runs.
QString pagesText(const QStringList& names)
{
    QStringList words;
    QList<int> numbers;
    for (const QString& name : names) {
        bool isNumber = false;
        const int number = name.toInt(&isNumber);
        if (isNumber && !numbers.contains(number))
            numbers << number;
        else if (!isNumber && !words.contains(name))
            words << name;
    }
    std::sort(numbers.begin(), numbers.end());
    for (qsizetype i = 0; i < numbers.size();) {
        qsizetype end = i;
        while (end + 1 < numbers.size() && numbers.at(end + 1) == numbers.at(end) + 1)
            ++end;
        words << (end == i ? QString::number(numbers.at(i))
                           : QStringLiteral("%1\u2013%2").arg(numbers.at(i)).arg(numbers.at(end)));
        i = end + 1;
    }
    if (words.isEmpty())
        return {};
    // Masters have long names: a few of them tell where to look.
    constexpr qsizetype kShownPages = 5;
    if (words.size() > kShownPages + 1) {
        const qsizetype rest = words.size() - kShownPages;
        words.resize(kShownPages);
        words << QStringLiteral("… %1 more").arg(rest);
    }
    const bool one = words.size() == 1 && numbers.size() <= 1;
    return QStringLiteral(" (%1 %2)").arg(one ? QStringLiteral("page") : QStringLiteral("pages"), words.join(u", "));
}

// The records that raised the same alerts on the same file, shown as one line.
struct AlertGroup {
    QString name;
    QString alerts;
    qsizetype count = 0;
    QStringList pages;
};

QStringList groupedLines(const QVariantList& alerted, bool isLink)
{
    QList<AlertGroup> groups;
    QHash<QString, qsizetype> indexOf;
    for (const QVariant& item : alerted) {
        const QVariantMap record = item.toMap();
        const QString name = record.value(app::kNameKey).toString();
        const QString path = record.value(links::kLinkPathKey).toString();
        const QString alerts = alertLines(record);
        const QString key = (isLink && !path.isEmpty() && path != links::kLinkNoPath ? path : name) + u'\n' + alerts;
        auto at = indexOf.constFind(key);
        if (at == indexOf.cend()) {
            at = indexOf.insert(key, groups.size());
            groups.append({name, alerts, 0, {}});
        }
        AlertGroup& group = groups[*at];
        ++group.count;
        const QString page = record.value(links::kLinkPageKey).toString();
        if (isLink && !page.isEmpty())
            group.pages << page;
    }
    QStringList lines;
    for (const AlertGroup& group : groups)
        lines << QStringLiteral("%1%2%3: %4")
                     .arg(group.name, group.count > 1 ? QStringLiteral(" \u00d7%1").arg(group.count) : QString(),
                          pagesText(group.pages), group.alerts);
    return lines;
}

QString limitedLines(const QStringList& lines, std::optional<int> maxItems)
{
    const qsizetype shown = maxItems ? std::min<qsizetype>(*maxItems, lines.size()) : lines.size();
    QString text;
    for (qsizetype i = 0; i < shown; ++i)
        text += QStringLiteral("    %1\n").arg(lines.at(i));
    if (shown < lines.size())
        text += QStringLiteral("    \u2026 and %1 more\n").arg(lines.size() - shown);
    return text;
}

QString listSection(const QString& title, const QVariantList& rows, bool isLink, std::optional<int> maxItems)
{
    const QVariantList records = results::flatRecords(rows);
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
    return text + limitedLines(groupedLines(alerted, isLink), maxItems);
}

QString documentSection(const results::DocumentJudgement& checks, std::optional<int> maxItems)
{
    if (!checks.checked)
        return {};
    QStringList lines;
    for (const results::DocumentAlert& alert : checks.alerts)
        lines << alert.text;
    const QString count = lines.isEmpty()
                              ? QStringLiteral("no alerts")
                              : QStringLiteral("%1 alert%2").arg(lines.size()).arg(lines.size() == 1 ? "" : "s");
    return QStringLiteral("\n  Document: %1\n").arg(count) + limitedLines(lines, maxItems);
}

} // namespace

QString summaryText(const PreflightedDocument& document, const QString& presetName, std::optional<int> maxItems)
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
    text += documentSection(document.documentChecks, maxItems);
    text += listSection(QStringLiteral("Fonts"), document.fonts, false, maxItems);
    text += listSection(QStringLiteral("Colors"), document.colors, false, maxItems);
    text += listSection(QStringLiteral("Links"), document.links, true, maxItems);
    return text;
}

} // namespace quillon::cli
