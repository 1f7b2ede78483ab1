#include "reports/TextReport.h"

#include "app/BuildInfo.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/RecordKeys.h"
#include "inspection/ColorRecordKeys.h"
#include "inspection/FontRecordKeys.h"
#include "links/LinkRecordKeys.h"

#include "app/FilePaths.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>

using namespace quillon::inspection;

namespace quillon::reports {

namespace {

QString valueText(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("Yes") : QStringLiteral("No");
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return value.toStringList().join(QStringLiteral(", "));
    default:
        return value.toString();
    }
}

QString plainValue(const QString&, const QVariant& value)
{
    return value.isValid() ? valueText(value) : QString();
}

QString fontValue(const QString& key, const QVariant& value)
{
    if (key == inspection::kFontStatusKey)
        return QNTextReport::fontStatusForString(value.toString());
    return plainValue(key, value);
}

QString colorValue(const QString& key, const QVariant& value)
{
    if (key == inspection::kColorModelKey)
        return QNTextReport::spotStatusForString(value.toString());
    return plainValue(key, value);
}

} // namespace

QVariantList flattenedItems(const QVariantList& items)
{
    QVariantList out;
    for (const QVariant& item : items) {
        const QVariantMap record = item.toMap();
        if (record.contains(app::kGroupIsDockKey) && record.contains(app::kGroupChildrenKey))
            out += record.value(app::kGroupChildrenKey).toList();
        else
            out += item;
    }
    return out;
}

QStringList textReportTypeTitles()
{
    return {QStringLiteral("Regular"), QStringLiteral("Tab-delimited")};
}

TextReportType textReportTypeForTitle(const QString& title)
{
    return title.contains(QLatin1String("Regular")) ? TextReportType::Regular : TextReportType::TabDelimited;
}

QString preselectedTextReportTypeTitle(const app::Settings& settings)
{
    const QString stored = settings.string(kTextReportTypeSetting);
    return stored.isEmpty() ? textReportTypeTitles().constFirst() : stored;
}

void rememberTextReportTypeTitle(app::Settings& settings, const QString& title)
{
    settings.setValue(QLatin1String(kTextReportTypeSetting.name), title);
}

QNTextReport::QNTextReport(TextReportType type) : m_type(type)
{
    // setDelimiters
    m_attributeDelimiter = type == TextReportType::Regular ? QStringLiteral("\n") : QStringLiteral("\t");
    m_itemDelimiter = type == TextReportType::Regular ? QStringLiteral("\n\n") : QStringLiteral("\n");
}

QString QNTextReport::reportFileName(const QString& docName)
{
    return docName + QStringLiteral("_Quillon_Report.txt");
}

QString QNTextReport::fontStatusForString(const QString& status)
{
    if (status == inspection::kFontStatusInstalled)
        return QStringLiteral("OK");
    if (status == inspection::kFontStatusMissing)
        return QStringLiteral("Missing");
    if (status == inspection::kFontStatusFauxed)
        return QStringLiteral("Fauxed");
    if (status == inspection::kFontStatusUnknown)
        return QStringLiteral("Unknown");
    return QStringLiteral("?");
}

QString QNTextReport::spotStatusForString(const QString& model)
{
    if (model == inspection::kColorModelProcess)
        return QStringLiteral("Process");
    if (model == inspection::kColorModelSpot)
        return QStringLiteral("Spot");
    if (model == inspection::kColorModelMixedInk)
        return QStringLiteral("Mixed Ink");
    return QStringLiteral("?");
}

QString QNTextReport::attribute(const QVariant& value, const QString& label) const
{
    const QString text = value.isValid() && !value.isNull() ? valueText(value) : QStringLiteral("?");
    return m_type == TextReportType::Regular ? QStringLiteral("%1: %2").arg(label, text) : text;
}

QString QNTextReport::docInfoReport(const ReportDocumentInfo& info, const QDateTime& reportDate) const
{
    app::logEntry("docInfoReportFromDocInfoBox");
    QString text = QStringLiteral("-----------------Quillon Report-----------------\n");
    text += QStringLiteral("Created with Quillon %1\n").arg(QLatin1String(app::kQuillonVersion));
    text += QLatin1String(app::kCompanyName) + u'\n';
    text += QStringLiteral("%1  |  %2\n\n")
                .arg(QLatin1String(app::kCompanyWebAddress), QLatin1String(app::kSupportAddress));
    const QLocale locale;
    text += QStringLiteral("Report date: %1\n\n").arg(locale.toString(reportDate, QLocale::ShortFormat));
    text += QStringLiteral("Document: %1\n").arg(info.docName);
    text += QStringLiteral("Path: %1\n").arg(info.path);
    text += QStringLiteral("Creation Date: %1\n").arg(info.creationDate);
    text += QStringLiteral("Modification Date: %1\n").arg(info.modificationDate);
    return text;
}

QString QNTextReport::section(const QString& title, const QString& emptyMarker, const QVariantList& items,
                              const QList<Column>& columns,
                              QString (*mapValue)(const QString& key, const QVariant& value)) const
{
    const QVariantList records = flattenedItems(items);
    if (records.isEmpty())
        return title + m_itemDelimiter + emptyMarker;
    QStringList lines{title};
    if (m_type == TextReportType::TabDelimited) {
        QStringList headers;
        for (const Column& c : columns)
            headers << c.header;
        lines << headers.join(m_attributeDelimiter);
    }
    for (const QVariant& item : records) {
        const QVariantMap record = item.toMap();
        QStringList attributes;
        for (const Column& c : columns) {
            const auto it = record.constFind(c.key);
            const QVariant value = it == record.cend() ? QVariant() : QVariant(mapValue(c.key, *it));
            attributes << attribute(value, c.label);
        }
        lines << attributes.join(m_attributeDelimiter);
    }
    return lines.join(m_itemDelimiter);
}

QString QNTextReport::fontsReportFromItems(const QVariantList& items) const
{
    using namespace inspection;
    static const QList<Column> columns{
        {kFontNameKey, QStringLiteral("Name"), QStringLiteral("Name")},
        {kFontTypeKey, QStringLiteral("Type"), QStringLiteral("Type")},
        {kFontStatusKey, QStringLiteral("Status"), QStringLiteral("Status")},
        {kFontPsFontKey, QStringLiteral("PS Name"), QStringLiteral("PostScript font name")},
        {kFontEmbedKey, QStringLiteral("PDF Embedding"), QStringLiteral("PDF embedding allowed")},
    };
    return section(QStringLiteral("FONTS"), QStringLiteral("<no fonts>"), items, columns, fontValue);
}

QString QNTextReport::colorsReportFromItems(const QVariantList& items) const
{
    using namespace inspection;
    // The label "Process" differs from its header "Process/Spot" on purpose.
    static const QList<Column> columns{
        {kColorNameKey, QStringLiteral("Name"), QStringLiteral("Name")},
        {kColorValueKey, QStringLiteral("Value"), QStringLiteral("Value")},
        {kColorModelKey, QStringLiteral("Process/Spot"), QStringLiteral("Process")},
        {kColorSpaceKey, QStringLiteral("Space"), QStringLiteral("Space")},
        {kColorUsedKey, QStringLiteral("Used"), QStringLiteral("Used")},
    };
    return section(QStringLiteral("COLORS"), QStringLiteral("<no colors>"), items, columns, colorValue);
}

QString QNTextReport::linksReportFromItems(const QVariantList& items) const
{
    using namespace links;
    static const QList<Column> columns{
        {kLinkNameKey, QStringLiteral("Name"), QStringLiteral("Name")},
        {kLinkPathKey, QStringLiteral("Path"), QStringLiteral("Path")},
        {kLinkPageKey, QStringLiteral("Page"), QStringLiteral("Page")},
        {kLinkVolumeKey, QStringLiteral("Volume"), QStringLiteral("Volume")},
        {kLinkKindKey, QStringLiteral("Kind"), QStringLiteral("Kind")},
        {kLinkSizeKey, QStringLiteral("Size"), QStringLiteral("Size")},
        {kLinkColorKey, QStringLiteral("Color Mode"), QStringLiteral("Color")},
        {kLinkProfileKey, QStringLiteral("ICC Profile"), QStringLiteral("ICC Profile")},
        {kLinkScaleKey, QStringLiteral("Scale"), QStringLiteral("Scale")},
        {kLinkActualResKey, QStringLiteral("Actual Res"), QStringLiteral("Actual Res")},
        {kLinkEffectiveResKey, QStringLiteral("Effective Res"), QStringLiteral("Effective Res")},
        {kLinkEpsFontListKey, QStringLiteral("Fonts"), QStringLiteral("Fonts")},
        {kLinkEpsColListKey, QStringLiteral("Spot Colors"), QStringLiteral("Spot colors")},
        {kLinkStatusKey, QStringLiteral("Status"), QStringLiteral("Status")},
        {kLinkPrintKey, QStringLiteral("Printable"), QStringLiteral("Printable")},
    };
    return section(QStringLiteral("LINKS"), QStringLiteral("<no links>"), items, columns, plainValue);
}

QString QNTextReport::reportText(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links,
                                 const QString& paraStylesReport, const ReportDocumentInfo& info,
                                 const QDateTime& reportDate) const
{
    const QString gap = QStringLiteral("\n\n\n");
    QString text = docInfoReport(info, reportDate) + gap + fontsReportFromItems(fonts) + gap +
                   colorsReportFromItems(colors) + gap + linksReportFromItems(links);
    if (!paraStylesReport.isEmpty())
        text += gap + QStringLiteral("PARAGRAPH STYLES\n\n%1").arg(paraStylesReport);
    return text;
}

app::Result<QString> QNTextReport::writeReport(const QString& folder, const QVariantList& fonts,
                                               const QVariantList& colors, const QVariantList& links,
                                               const QString& paraStylesReport, const ReportDocumentInfo& info,
                                               const QDateTime& reportDate) const
{
    app::logLine(QStringLiteral("-> textReportWithFontsItems"));
    return saveReportFile(reportText(fonts, colors, links, paraStylesReport, info, reportDate).toUtf8(), folder,
                          reportFileName(info.docName), ExistingFile::Number);
}

namespace {

app::Error reportError(const QString& path, const QString& reason)
{
    return app::makeError(QStringLiteral("the report cannot be written: %1").arg(reason), path);
}

// Takes the first free name ("<name>", "<name>_1", ...) by creating it empty: an exclusive
// create, so that two runs never take the same one.
app::Result<QString> claimFreeName(const QString& folder, const QString& fileName)
{
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const QString path = app::finalPathByAppendingNumberToFileName(fileName, folder);
        QFile placeholder(path);
        if (placeholder.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return path;
        if (placeholder.error() != QFileDevice::OpenError || !QFileInfo::exists(path))
            return reportError(path, placeholder.errorString());
    }
    return reportError(folder + u'/' + fileName, QStringLiteral("no free name"));
}

} // namespace

app::Result<QString> QNTextReport::saveReportFile(const QByteArray& bytes, const QString& folder,
                                                  const QString& fileName, ExistingFile existing)
{
    QString path = folder + u'/' + fileName;
    if (QFileInfo(path).isDir())
        return reportError(path, QStringLiteral("a folder of that name is in the way"));
    const bool claimed = existing == ExistingFile::Number;
    if (claimed) {
        app::Result<QString> free = claimFreeName(folder, fileName);
        if (!free)
            return free.error();
        path = *free;
    }
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return path;
    const QString reason = file.errorString();
    file.cancelWriting();
    if (claimed)
        QFile::remove(path); // the empty placeholder this call made
    return reportError(path, reason);
}

} // namespace quillon::reports
