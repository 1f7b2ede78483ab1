#include "cli/JsonOutput.h"

#include "app/BuildInfo.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonDocument>

namespace quillon::cli {

namespace {

// Keys that only name a picture or a widget's state: a script has nothing to read in them.
bool isPictureKey(const QString& key)
{
    return key == results::kAlertKey || key == results::kAlertNameKey || key == results::kIconKey ||
           key == results::kStatusImgKey || key == results::kBadFolderKey || key == results::kTypeIconKey ||
           key == results::kStatusIconKey;
}

// A number shown as text ("72", "62.5"), or null when the text says it is not known ("-", "?").
QJsonValue numberOrNull(const QVariant& value)
{
    if (value.typeId() != QMetaType::QString)
        return value.canConvert<double>() && value.isValid() ? QJsonValue(value.toDouble()) : QJsonValue();
    bool ok = false;
    const double number = value.toString().trimmed().toDouble(&ok);
    return ok ? QJsonValue(number) : QJsonValue();
}

QJsonValue dateJson(const QDateTime& date)
{
    return date.isValid() ? QJsonValue(date.toUTC().toString(Qt::ISODate)) : QJsonValue();
}

// Bleed or slug offsets in points, or null when the document gives none.
QJsonValue offsetsJson(const inspection::BleedOrSlugValues& values)
{
    if (values.top.isEmpty() && values.bottom.isEmpty() && values.insideOrLeft.isEmpty() &&
        values.outsideOrRight.isEmpty())
        return QJsonValue();
    const auto side = [](const QString& text) { return QJsonValue(text.toDouble()); };
    return QJsonObject{{QStringLiteral("top"), side(values.top)},
                       {QStringLiteral("bottom"), side(values.bottom)},
                       {QStringLiteral("inside"), side(values.insideOrLeft)},
                       {QStringLiteral("outside"), side(values.outsideOrRight)},
                       {QStringLiteral("unit"), QStringLiteral("pt")}};
}

std::string indentation(int depth)
{
    return std::string(static_cast<size_t>(depth) * 4, ' ');
}

} // namespace

QJsonObject jsonEnvelope(const QString& command)
{
    return {{QStringLiteral("format"), kJsonFormat},
            {QStringLiteral("quillonVersion"), QString::fromLatin1(app::kQuillonVersion)},
            {QStringLiteral("command"), command}};
}

QByteArray jsonText(const QJsonObject& envelope)
{
    return QJsonDocument(envelope).toJson(QJsonDocument::Indented);
}

QJsonObject jsonFileEntry(const QString& path, const QStringList& warnings, const QString& error)
{
    QJsonObject entry{{QStringLiteral("path"), path},
                      {QStringLiteral("name"), QFileInfo(path).fileName()},
                      {QStringLiteral("warnings"), QJsonArray::fromStringList(warnings)}};
    if (!error.isEmpty())
        entry.insert(QStringLiteral("error"), error);
    return entry;
}

QJsonValue jsonValue(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return value.toLongLong();
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return static_cast<double>(value.toULongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    case QMetaType::QDateTime:
        return dateJson(value.toDateTime());
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QVariantMap: {
        QJsonObject object;
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            object.insert(it.key(), jsonValue(it.value()));
        return object;
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        QJsonArray array;
        for (const QVariant& item : value.toList())
            array.append(jsonValue(item));
        return array;
    }
    case QMetaType::UnknownType:
        return QJsonValue();
    default:
        return value.toString();
    }
}

QJsonArray alertsJson(const QVariant& alerts)
{
    QJsonArray array;
    const QVariantMap map = alerts.toMap();
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const QStringList texts =
            it.value().typeId() == QMetaType::QString ? QStringList{it.value().toString()} : it.value().toStringList();
        for (const QString& text : texts)
            array.append(QJsonObject{{QStringLiteral("rule"), it.key()}, {QStringLiteral("text"), text}});
    }
    return array;
}

QJsonObject documentInfoJson(const inspection::QNDocInfo& info)
{
    QJsonArray sizes;
    for (const inspection::DocPageSize& size : info.docPageSizes())
        sizes.append(QJsonObject{{QStringLiteral("width"), size.width.toDouble()},
                                 {QStringLiteral("height"), size.height.toDouble()},
                                 {QStringLiteral("unit"), QStringLiteral("pt")},
                                 {QStringLiteral("pages"), QJsonArray::fromStringList(size.pageNames)}});
    return {
        {inspection::kDocInfoDocNameKey, info.docName()},
        {inspection::kDocInfoDocPathKey, info.docPath()},
        {inspection::kDocInfoNumberOfPagesKey, info.numberOfPagesStr()},
        {QStringLiteral("numberOfPages"), numberOrNull(info.numberOfPagesStr())},
        {inspection::kDocInfoInDesignVersionKey, info.InDesignVersion()},
        {inspection::kDocInfoFileSizeKey, info.fileSizeStr()},
        {QStringLiteral("fileSize"), static_cast<double>(info.fileSize())},
        {inspection::kDocInfoCreationDateStrKey, info.creationDateStr()},
        {inspection::kDocInfoCreationDateKey, dateJson(info.creationDate())},
        {inspection::kDocInfoModDateStrKey, info.modDateStr()},
        {inspection::kDocInfoModDateKey, dateJson(info.modDate())},
        {inspection::kDocInfoBleedKey, info.bleedStr()},
        {QStringLiteral("bleed"), offsetsJson(info.bleedValues())},
        {inspection::kDocInfoSlugKey, info.slugStr()},
        {QStringLiteral("slug"), offsetsJson(info.slugValues())},
        {inspection::kDocInfoHorizUnitsKey, info.horizMeasurementUnits()},
        {inspection::kDocInfoVertUnitsKey, info.vertMeasurementUnits()},
        {QStringLiteral("pageSizeStr"), info.pageSizeStr()},
        {QStringLiteral("pageSizes"), sizes},
    };
}

QJsonObject recordJson(const QVariantMap& record)
{
    QJsonObject object;
    for (auto it = record.cbegin(); it != record.cend(); ++it) {
        if (isPictureKey(it.key()))
            continue;
        if (it.key() == results::kAlertsKey)
            object.insert(it.key(), alertsJson(it.value()));
        else if (it.value().typeId() == QMetaType::QString)
            object.insert(it.key(), it.value().toString());
        else
            object.insert(it.key(), jsonValue(it.value()));
    }
    if (!object.contains(results::kAlertsKey))
        object.insert(results::kAlertsKey, QJsonArray());
    return object;
}

QJsonObject linkJson(const QVariantMap& record)
{
    QJsonObject object = recordJson(record);
    object.insert(QStringLiteral("actualPpi"), numberOrNull(record.value(links::kLinkActualResKey)));
    object.insert(QStringLiteral("effectivePpi"), numberOrNull(record.value(links::kLinkEffectiveResKey)));
    object.insert(QStringLiteral("horizontalScale"), numberOrNull(record.value(links::kLinkHorScaleKey)));
    object.insert(QStringLiteral("verticalScale"), numberOrNull(record.value(links::kLinkVertScaleKey)));
    return object;
}

void appendJson(std::string& out, const QJsonValue& value, int depth)
{
    if (!value.isObject() && !value.isArray()) {
        // A document holds only objects and arrays: the value is written as the single item of one.
        const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        out.append(text.constData() + 1, static_cast<size_t>(text.size() - 2));
        return;
    }
    const QByteArray text = value.isObject() ? QJsonDocument(value.toObject()).toJson(QJsonDocument::Indented)
                                             : QJsonDocument(value.toArray()).toJson(QJsonDocument::Indented);
    const std::string prefix = indentation(depth);
    const qsizetype end = text.endsWith('\n') ? text.size() - 1 : text.size();
    for (qsizetype start = 0; start < end;) {
        qsizetype stop = text.indexOf('\n', start);
        if (stop < 0 || stop > end)
            stop = end;
        if (start > 0)
            out += "\n" + prefix;
        out.append(text.constData() + start, static_cast<size_t>(stop - start));
        start = stop + 1;
    }
}

} // namespace quillon::cli
