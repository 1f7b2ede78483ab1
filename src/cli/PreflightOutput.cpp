#include "cli/PreflightOutput.h"

#include "app/RecordKeys.h"
#include "app/Records.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"
#include "results/ResultRows.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <map>
#include <ostream>
#include <string>

namespace quillon::cli {

namespace {

QJsonObject jsonObject(const QVariantMap& map, bool isRecord)
{
    QJsonObject object;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        if (isRecord && it.key() == results::kIconKey)
            continue;
        if (isRecord && it.key() == app::kGroupChildrenKey)
            object.insert(it.key(), jsonRecords(it.value().toList()));
        else
            object.insert(it.key(), jsonValue(it.value()));
    }
    return object;
}

QJsonObject infoJson(const inspection::QNDocInfo& info)
{
    QJsonArray sizes;
    for (const inspection::DocPageSize& size : info.docPageSizes())
        sizes.append(QJsonObject{{QStringLiteral("width"), size.width},
                                 {QStringLiteral("height"), size.height},
                                 {QStringLiteral("pages"), QJsonArray::fromStringList(size.pageNames)}});
    return {
        {inspection::kDocInfoDocNameKey, info.docName()},
        {inspection::kDocInfoDocPathKey, info.docPath()},
        {inspection::kDocInfoNumberOfPagesKey, info.numberOfPagesStr()},
        {inspection::kDocInfoInDesignVersionKey, info.InDesignVersion()},
        {inspection::kDocInfoFileSizeKey, info.fileSizeStr()},
        {inspection::kDocInfoCreationDateStrKey, info.creationDateStr()},
        {inspection::kDocInfoModDateStrKey, info.modDateStr()},
        {inspection::kDocInfoBleedKey, info.bleedStr()},
        {inspection::kDocInfoSlugKey, info.slugStr()},
        {inspection::kDocInfoHorizUnitsKey, info.horizMeasurementUnits()},
        {inspection::kDocInfoVertUnitsKey, info.vertMeasurementUnits()},
        {QStringLiteral("pageSizeStr"), info.pageSizeStr()},
        {QStringLiteral("docPageSizes"), sizes},
    };
}

std::string indentation(int depth)
{
    return std::string(static_cast<size_t>(depth) * 4, ' ');
}

// A JSON value as QJsonDocument's indented form writes it, its lines after the first indented
// `depth` levels further, so that it can stand as a member at that depth.
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

} // namespace

QJsonValue jsonValue(const QVariant& value)
{
    switch (value.typeId()) {
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
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        return date.isValid() ? QJsonValue(date.toUTC().toString(Qt::ISODate)) : QJsonValue();
    }
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QVariantMap:
        return jsonObject(value.toMap(), false);
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

QJsonArray jsonRecords(const QVariantList& records)
{
    QJsonArray array;
    for (const QVariant& record : records)
        array.append(record.typeId() == QMetaType::QVariantMap ? QJsonValue(jsonObject(record.toMap(), true))
                                                               : jsonValue(record));
    return array;
}

namespace {

// The members of a document's object other than its record lists: "path", "name", "warnings"
// (always a list), then "info", "summary", "status" and "errorCount", or "error" when it could not
// be preflighted.
QJsonObject documentJson(const PreflightedDocument& document)
{
    QJsonObject object{{QStringLiteral("path"), document.path},
                       {QStringLiteral("name"), document.name},
                       {QStringLiteral("warnings"), QJsonArray::fromStringList(document.warnings)}};
    if (!document.preflighted) {
        object.insert(QStringLiteral("error"), document.error);
        return object;
    }
    object.insert(QStringLiteral("info"), infoJson(document.info));
    object.insert(QStringLiteral("summary"), jsonObject(document.summary, false));
    object.insert(QStringLiteral("status"), document.status.text);
    object.insert(QStringLiteral("errorCount"), document.status.total);
    return object;
}

} // namespace

void writeDocumentJson(std::ostream& stream, const PreflightedDocument& document, int depth)
{
    // The record lists are written one record at a time: as one JSON tree, or one text, 200,000
    // links cost gigabytes.
    const QJsonObject small = documentJson(document);
    std::map<QString, const QVariantList*> members;
    for (auto it = small.constBegin(); it != small.constEnd(); ++it)
        members.emplace(it.key(), nullptr);
    if (document.preflighted)
        for (const auto& [key, records] :
             {std::pair{QStringLiteral("links"), &document.links}, std::pair{QStringLiteral("fonts"), &document.fonts},
              std::pair{QStringLiteral("colors"), &document.colors}})
            members.emplace(key, records);

    std::string out = indentation(depth) + "{\n";
    const auto flush = [&stream, &out](size_t above) {
        if (out.size() > above) {
            stream.write(out.data(), static_cast<std::streamsize>(out.size()));
            out.clear();
        }
    };
    bool first = true;
    for (const auto& [key, records] : members) {
        out += first ? "" : ",\n";
        first = false;
        out += indentation(depth + 1);
        appendJson(out, key, depth + 1);
        out += ": ";
        if (!records) {
            appendJson(out, small.value(key), depth + 1);
            continue;
        }
        out += "[\n";
        for (qsizetype i = 0; i < records->size(); ++i) {
            const QVariant& record = records->at(i);
            out += indentation(depth + 2);
            appendJson(out,
                       record.typeId() == QMetaType::QVariantMap ? QJsonValue(jsonObject(record.toMap(), true))
                                                                 : jsonValue(record),
                       depth + 2);
            out += i + 1 < records->size() ? ",\n" : "\n";
            flush(1 << 16);
        }
        out += indentation(depth + 1) + "]";
    }
    out += "\n" + indentation(depth) + "}";
    flush(0);
}

} // namespace quillon::cli
