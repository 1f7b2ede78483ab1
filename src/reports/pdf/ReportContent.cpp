#include "reportpdf/ReportContent.h"

#include "app/BuildInfo.h"
#include "app/Log.h"
#include "inspection/ColorRecordKeys.h"
#include "inspection/FontRecordKeys.h"
#include "links/LinkRecordKeys.h"
#include "links/LinkValues.h"
#include "reports/TextReport.h"
#include "results/ResultKeys.h"

#include <QFileInfo>

#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

#include <pwd.h>
#include <unistd.h>

namespace quillon::reportpdf {

namespace {

const results::QNSummaryItem* section(const QList<results::QNSummaryItem>& sections, const QString& title)
{
    for (const results::QNSummaryItem& item : sections)
        if (item.title == title)
            return &item;
    return nullptr;
}

// A bold header and the rows of a section, the first `skipped` rows left out.
QList<SummaryLine> block(const QList<results::QNSummaryItem>& sections, const QString& title, qsizetype skipped = 0)
{
    QList<SummaryLine> lines{{title, true}};
    if (const results::QNSummaryItem* item = section(sections, title))
        for (qsizetype i = skipped; i < item->children.size(); ++i)
            lines.append({summaryRowText(item->children.at(i).title, item->children.at(i).value), false});
    return lines;
}

// Record values as one line of text: lists joined, "\r" and "\n" separated lists too.
QString cellText(const QVariant& value)
{
    if (!value.isValid() || value.isNull())
        return QStringLiteral("?");
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("Yes") : QStringLiteral("No");
    if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    const QString text = value.toString();
    if (!text.contains(u'\r') && !text.contains(u'\n'))
        return text;
    static const QRegularExpression lineBreaks(QStringLiteral("[\r\n]+"));
    return text.split(lineBreaks, Qt::SkipEmptyParts).join(QStringLiteral(", "));
}

QString listOrDash(const QVariant& value)
{
    const QString text = value.isValid() ? cellText(value).trimmed() : QString();
    return text.isEmpty() ? QStringLiteral("-") : text;
}

QStringList alertTexts(const QVariant& alerts)
{
    if (alerts.typeId() == QMetaType::QVariantList || alerts.typeId() == QMetaType::QStringList)
        return alerts.toStringList();
    return {alerts.toString()};
}

struct Column {
    QString key;
    QString header;
    double width;
};

PrintOutline outline(const QString& title, const QList<Column>& columns, const QVariantList& items,
                     QString (*mapValue)(const QString& key, const QVariant& value), bool withSwatches = false)
{
    PrintOutline out;
    out.title = title;
    for (const Column& column : columns) {
        out.headers << column.header;
        out.columnWidths << column.width;
    }
    for (const QVariant& item : reports::flattenedItems(items)) {
        const QVariantMap record = item.toMap();
        const QVariantMap alerts = record.value(results::kAlertsKey).toMap();
        OutlineRow row;
        for (qsizetype i = 0; i < columns.size(); ++i) {
            const QString& key = columns.at(i).key;
            row.cells << mapValue(key, record.value(key));
            if (alerts.contains(key))
                row.alertedColumns << static_cast<int>(i);
        }
        for (auto it = alerts.cbegin(); it != alerts.cend(); ++it)
            row.alerts += alertTexts(*it);
        if (withSwatches)
            row.swatch = swatchColor(record);
        out.rows << row;
    }
    return out;
}

QString plain(const QString&, const QVariant& value)
{
    return cellText(value);
}

QString fontCell(const QString& key, const QVariant& value)
{
    return key == inspection::kFontStatusKey ? reports::QNTextReport::fontStatusForString(value.toString())
                                             : cellText(value);
}

QString colorCell(const QString& key, const QVariant& value)
{
    return key == inspection::kColorModelKey ? reports::QNTextReport::spotStatusForString(value.toString())
                                             : cellText(value);
}

LinkNote linkNote(const QVariantMap& record, const QString& docName)
{
    QStringList warnings;
    const QVariantMap alerts = record.value(results::kAlertsKey).toMap();
    for (auto it = alerts.cbegin(); it != alerts.cend(); ++it)
        warnings += alertTexts(*it);
    return {record.value(links::kLinkNameKey).toString(),
            listOrDash(record.value(links::kLinkAppKey)),
            listOrDash(record.value(links::kLinkEpsFontListKey)),
            listOrDash(record.value(links::kLinkEpsColListKey)),
            docName,
            warnings.isEmpty() ? QStringLiteral("-") : warnings.join(QStringLiteral("; ")),
            record.value(links::kLinkPathKey).toString()};
}

// Qt has no medium style: the long one without the weekday, with short month names.
QString mediumDateTime(const QDateTime& when)
{
    const QLocale locale;
    QString date = locale.dateFormat(QLocale::LongFormat);
    date.remove(QRegularExpression(QStringLiteral("d{4}[,.]?\\s*")));
    date.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    QString time = locale.timeFormat(QLocale::LongFormat);
    time.remove(QRegularExpression(QStringLiteral("\\s*\\(?t+\\)?")));
    return locale.toString(when, date.trimmed() + QStringLiteral(" ") + time.trimmed());
}

} // namespace

std::optional<QColor> swatchColor(const QVariantMap& colorRecord)
{
    using namespace inspection;
    const QVariantList values = colorRecord.value(kColorValuesListKey).toList();
    const QString space = colorRecord.value(kColorSpaceKey).toString();
    auto component = [&values](qsizetype i) { return std::clamp(values.at(i).toDouble(), 0.0, 1.0); };
    if (colorRecord.value(kColorNameKey).toString() == kColorSwatchPaper)
        return QColor(Qt::white);
    if (space == kColorSpaceCMYK && values.size() == 4)
        return QColor::fromCmykF(component(0), component(1), component(2), component(3));
    if (space == kColorSpaceRGB && values.size() == 3)
        return QColor::fromRgbF(component(0), component(1), component(2));
    return std::nullopt;
}

QString LinkNote::contents() const
{
    return QStringLiteral("Name: %1\nApplication: %2").arg(name, application) +
           QStringLiteral("\nFonts: %1").arg(fonts) + QStringLiteral("\nColors: %1").arg(colors) +
           QStringLiteral("\nDocument: %1").arg(document) + QStringLiteral("\nPreflight Warning: %1").arg(warning) +
           QStringLiteral("\n\nPath: %1").arg(path);
}

QString summaryRowText(const QString& title, const QString& value)
{
    return QStringLiteral("\t%1:  %2").arg(title, value == QLatin1String("0") ? QStringLiteral("-") : value);
}

QList<SummaryLine> summaryField1(const QList<results::QNSummaryItem>& sections)
{
    return block(sections, QStringLiteral("Document"), 2) + block(sections, QStringLiteral("Fonts"));
}

QList<SummaryLine> summaryField2(const QList<results::QNSummaryItem>& sections)
{
    return block(sections, QStringLiteral("Colors")) + block(sections, QStringLiteral("Fonts"));
}

QString userLine(const QString& fullName, const QDateTime& when)
{
    return QStringLiteral("%1 \u2022 %2").arg(fullName, mediumDateTime(when));
}

QString currentUserFullName()
{
    if (const passwd* account = getpwuid(getuid())) {
        const QString gecos = QString::fromLocal8Bit(account->pw_gecos).section(u',', 0, 0).trimmed();
        return gecos.isEmpty() ? QString::fromLocal8Bit(account->pw_name) : gecos;
    }
    return qEnvironmentVariable("USER");
}

ReportInputs reportInputs(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links,
                          const inspection::QNDocInfo& docInfo)
{
    results::QNSummaryOutlineController summary;
    summary.startup();
    const results::PreflightStatus status = summary.loadSummary(
        {docInfo.docName(), docInfo.docPath(), docInfo.creationDateStr(), docInfo.modDateStr(),
         docInfo.InDesignVersion(), docInfo.numberOfPagesStr(), docInfo.bleedStr(), docInfo.slugStr()},
        fonts, colors, links, links::fileSizeFormat);
    return reportInputs(fonts, colors, links, docInfo, summary.items(), status);
}

ReportInputs reportInputs(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links,
                          const inspection::QNDocInfo& docInfo, QList<results::QNSummaryItem> summary,
                          const results::PreflightStatus& status)
{
    ReportInputs inputs;
    inputs.fonts = fonts;
    inputs.colors = colors;
    inputs.links = links;
    inputs.summary = std::move(summary);
    inputs.statusLine = status.text;
    inputs.hasAlerts = status.total != 0;
    inputs.docName = docInfo.docName();
    inputs.docPath = docInfo.docPath();
    return inputs;
}

void stampReport(ReportInputs& inputs, const QString& presetName)
{
    inputs.presetName = presetName;
    inputs.userName = currentUserFullName();
    inputs.reportDate = QDateTime::currentDateTime();
}

ReportSection reportSection(const ReportInputs& inputs)
{
    app::logEntry("loadSummary [report window]");
    ReportSection report;
    report.creditLine = QStringLiteral("Created with Quillon %1").arg(QLatin1String(app::kQuillonVersion));
    if (!inputs.docPath.isEmpty()) {
        report.pathLabel = QStringLiteral("Path:");
        report.docName = inputs.docName;
        report.docPath = inputs.docPath;
    }
    report.presetLine = inputs.presetName.isEmpty() ? QStringLiteral("[Default]") : inputs.presetName;
    report.userLine = userLine(inputs.userName, inputs.reportDate);
    report.statusLine = inputs.statusLine;
    report.hasAlerts = inputs.hasAlerts;
    report.summaryField1 = summaryField1(inputs.summary);
    report.summaryField2 = summaryField2(inputs.summary);

    using namespace inspection;
    report.fonts = outline(QStringLiteral("Fonts"),
                           {{kFontNameKey, QStringLiteral("Name"), 0.34},
                            {kFontTypeKey, QStringLiteral("Type"), 0.14},
                            {kFontStatusKey, QStringLiteral("Status"), 0.12},
                            {kFontPsFontKey, QStringLiteral("PS Name"), 0.28},
                            {kFontEmbedKey, QStringLiteral("Embedding"), 0.12}},
                           inputs.fonts, fontCell);
    report.colors = outline(QStringLiteral("Colors"),
                            {{kColorNameKey, QStringLiteral("Name"), 0.34},
                             {kColorValueKey, QStringLiteral("Value"), 0.26},
                             {kColorModelKey, QStringLiteral("Process/Spot"), 0.14},
                             {kColorSpaceKey, QStringLiteral("Space"), 0.14},
                             {kColorUsedKey, QStringLiteral("Used"), 0.12}},
                            inputs.colors, colorCell, true);
    using namespace links;
    report.links = outline(QStringLiteral("Links"),
                           {{kLinkNameKey, QStringLiteral("Name"), 0.23},
                            {kLinkPageKey, QStringLiteral("Page"), 0.08},
                            {kLinkKindKey, QStringLiteral("Kind"), 0.10},
                            {kLinkColorKey, QStringLiteral("Color Mode"), 0.11},
                            {kLinkProfileKey, QStringLiteral("ICC Profile"), 0.12},
                            {kLinkScaleKey, QStringLiteral("Scale"), 0.06},
                            {kLinkActualResKey, QStringLiteral("Act. ppi"), 0.08},
                            {kLinkEffectiveResKey, QStringLiteral("Eff. ppi"), 0.07},
                            {kLinkSizeKey, QStringLiteral("Size"), 0.07},
                            {kLinkStatusKey, QStringLiteral("Status"), 0.08}},
                           inputs.links, plain);
    report.links.legend = QStringLiteral("a note with the link's details (open it in a PDF viewer)");
    for (const QVariant& item : reports::flattenedItems(inputs.links))
        report.linkNotes << linkNote(item.toMap(), inputs.docName);
    report.paraStyles = inputs.paraStyles;
    app::logLine(QStringLiteral("> setSizes"));
    app::logLine(QStringLiteral("fontCount %1 colorCount %2 linkCount %3")
                     .arg(report.fonts.rows.size())
                     .arg(report.colors.rows.size())
                     .arg(report.links.rows.size()));
    return report;
}

void markSharedLinks(QList<ReportSection>& sections)
{
    QHash<QString, QSet<qsizetype>> users;
    for (qsizetype s = 0; s < sections.size(); ++s)
        for (const LinkNote& note : sections.at(s).linkNotes)
            users[note.path].insert(s);
    for (ReportSection& section : sections)
        for (LinkNote& note : section.linkNotes)
            if (users.value(note.path).size() > 1)
                note.document = QStringLiteral("Multiple documents");
}

} // namespace quillon::reportpdf
