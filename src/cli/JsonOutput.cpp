#include "cli/JsonOutput.h"

#include "app/BuildInfo.h"
#include "app/ParallelFor.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <ostream>
#include <vector>

namespace quillon::cli {

namespace {

// Keys that only name a picture or a widget's state: a script has nothing to read in them.
bool isPictureKey(const QString& key)
{
    return key == results::kAlertKey || key == results::kAlertNameKey || key == results::kIconKey ||
           key == results::kStatusImgKey || key == results::kBadFolderKey || key == results::kTypeIconKey ||
           key == results::kStatusIconKey;
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

namespace {

// The text of values as QJsonDocument's indented form writes them, straight into `out`: records
// are many, and a JSON tree made and printed for each costs more than the rest of the output.
void appendText(std::string& out, QStringView text)
{
    static constexpr char kHex[] = "0123456789abcdef";
    out += '"';
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (unit >= 0x80) {
            const bool pair = QChar::isHighSurrogate(unit) && i + 1 < text.size() && text[i + 1].isLowSurrogate();
            if (QChar::isSurrogate(unit) && !pair) {
                // A lone half of a pair is not UTF-8: it is written escaped.
                out += "\\u";
                for (int shift = 12; shift >= 0; shift -= 4)
                    out += kHex[(unit >> shift) & 0xf];
                continue;
            }
            const QByteArray utf8 = text.mid(i, pair ? 2 : 1).toUtf8();
            out.append(utf8.constData(), static_cast<size_t>(utf8.size()));
            i += pair ? 1 : 0;
            continue;
        }
        switch (unit) {
        case u'"':
            out += "\\\"";
            break;
        case u'\\':
            out += "\\\\";
            break;
        case u'\b':
            out += "\\b";
            break;
        case u'\f':
            out += "\\f";
            break;
        case u'\n':
            out += "\\n";
            break;
        case u'\r':
            out += "\\r";
            break;
        case u'\t':
            out += "\\t";
            break;
        default:
            if (unit < 0x20) {
                out += "\\u00";
                out += kHex[unit >> 4];
                out += kHex[unit & 0xf];
            } else {
                out += static_cast<char>(unit);
            }
        }
    }
    out += '"';
}

void appendNumber(std::string& out, double number)
{
    if (!std::isfinite(number)) {
        out += "null"; // JSON has no infinities
        return;
    }
    const QByteArray text = QByteArray::number(number, 'g', QLocale::FloatingPointShortest);
    out.append(text.constData(), static_cast<size_t>(text.size()));
}

void appendInteger(std::string& out, qint64 number)
{
    out += std::to_string(number);
}

void appendIndent(std::string& out, int depth)
{
    out.append(static_cast<size_t>(depth) * 4, ' ');
}

// An object or array written member by member at `depth`: "{\n", the members a level deeper,
// separated by ",\n", then the closing bracket on a line of its own.
class Container {
public:
    Container(std::string& out, int depth, char open) : m_out(out), m_depth(depth), m_close(open == '{' ? '}' : ']')
    {
        m_out += open;
        m_out += '\n';
    }
    ~Container()
    {
        if (!m_empty)
            m_out += '\n';
        appendIndent(m_out, m_depth);
        m_out += m_close;
    }
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    // Begins the next array item.
    void item()
    {
        m_out += m_empty ? "" : ",\n";
        m_empty = false;
        appendIndent(m_out, m_depth + 1);
    }
    // Begins the next member: its key and the colon.
    void member(QStringView key)
    {
        item();
        appendText(m_out, key);
        m_out += ": ";
    }

private:
    std::string& m_out;
    int m_depth;
    char m_close;
    bool m_empty = true;
};

// A record value: numbers as numbers, booleans as booleans, dates as ISO-8601 text in UTC, data as
// base64 text, lists and dictionaries as arrays and objects.
void appendValue(std::string& out, const QVariant& value, int depth)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        appendText(out, value.toString());
        break;
    case QMetaType::Bool:
        out += value.toBool() ? "true" : "false";
        break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        appendInteger(out, value.toLongLong());
        break;
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        appendNumber(out, static_cast<double>(value.toULongLong()));
        break;
    case QMetaType::Double:
    case QMetaType::Float:
        appendNumber(out, value.toDouble());
        break;
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        if (date.isValid())
            appendText(out, date.toUTC().toString(Qt::ISODate));
        else
            out += "null";
        break;
    }
    case QMetaType::QByteArray:
        appendText(out, QString::fromLatin1(value.toByteArray().toBase64()));
        break;
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        Container object(out, depth, '{');
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            object.member(it.key());
            appendValue(out, it.value(), depth + 1);
        }
        break;
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        Container array(out, depth, '[');
        for (const QVariant& item : value.toList()) {
            array.item();
            appendValue(out, item, depth + 1);
        }
        break;
    }
    case QMetaType::UnknownType:
        out += "null";
        break;
    default:
        appendText(out, value.toString());
    }
}

// A record's "alerts" (attribute key -> text or texts) as [{"rule": key, "text": text}, ...].
void appendAlerts(std::string& out, const QVariant& alerts, int depth)
{
    Container array(out, depth, '[');
    const QVariantMap map = alerts.toMap();
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const QStringList texts =
            it.value().typeId() == QMetaType::QString ? QStringList{it.value().toString()} : it.value().toStringList();
        for (const QString& text : texts) {
            array.item();
            Container alert(out, depth + 1, '{');
            alert.member(u"rule");
            appendText(out, it.key());
            alert.member(u"text");
            appendText(out, text);
        }
    }
}

// A number shown as text ("72", "62.5"), or null when the text says it is not known ("-", "?").
void appendNumberOrNull(std::string& out, const QVariant& value)
{
    bool ok = false;
    double number = 0;
    if (value.typeId() != QMetaType::QString) {
        ok = value.canConvert<double>() && value.isValid();
        number = ok ? value.toDouble() : 0;
    } else {
        number = value.toString().trimmed().toDouble(&ok);
    }
    if (ok)
        appendNumber(out, number);
    else
        out += "null";
}

std::string numberOrNullText(const QVariant& value)
{
    std::string text;
    appendNumberOrNull(text, value);
    return text;
}

// The text of one JSON value parsed back, for the callers that want a JSON tree.
QJsonValue parsedValue(const std::string& text)
{
    const QByteArray array = "[" + QByteArray::fromStdString(text) + "]";
    return QJsonDocument::fromJson(array).array().at(0);
}

} // namespace

QJsonValue jsonValue(const QVariant& value)
{
    std::string text;
    appendValue(text, value, 0);
    return parsedValue(text);
}

QJsonArray alertsJson(const QVariant& alerts)
{
    std::string text;
    appendAlerts(text, alerts, 0);
    return parsedValue(text).toArray();
}

void appendRecordJson(std::string& out, const QVariantMap& record, RecordKind kind, int depth)
{
    enum class Written { Value, Alerts, NumberOrNull };
    struct Member {
        QStringView key;
        Written as;
        const QVariant* value;
    };
    static const QVariant kNoAlerts;
    static const QVariant kNoValue;
    static const QString kNumberKeys[] = {QStringLiteral("actualPpi"), QStringLiteral("effectivePpi"),
                                          QStringLiteral("horizontalScale"), QStringLiteral("verticalScale")};
    const QString* numberSources[] = {&links::kLinkActualResKey, &links::kLinkEffectiveResKey, &links::kLinkHorScaleKey,
                                      &links::kLinkVertScaleKey};
    const bool isLink = kind == RecordKind::Link;
    const auto isNumberKey = [&](const QString& key) {
        return isLink && std::find(std::begin(kNumberKeys), std::end(kNumberKeys), key) != std::end(kNumberKeys);
    };

    std::vector<Member> members;
    members.reserve(static_cast<size_t>(record.size()) + 5);
    bool hasAlerts = false;
    for (auto it = record.cbegin(); it != record.cend(); ++it) {
        if (isPictureKey(it.key()) || isNumberKey(it.key()))
            continue;
        const bool alerts = it.key() == results::kAlertsKey;
        hasAlerts = hasAlerts || alerts;
        members.push_back({it.key(), alerts ? Written::Alerts : Written::Value, &it.value()});
    }
    if (!hasAlerts)
        members.push_back({results::kAlertsKey, Written::Alerts, &kNoAlerts});
    if (isLink)
        for (size_t i = 0; i < std::size(kNumberKeys); ++i) {
            const auto found = record.constFind(*numberSources[i]);
            members.push_back({kNumberKeys[i], Written::NumberOrNull, found == record.cend() ? &kNoValue : &*found});
        }
    // In key order, as a JSON object keeps its members.
    std::sort(members.begin(), members.end(), [](const Member& a, const Member& b) { return a.key < b.key; });

    Container object(out, depth, '{');
    for (const Member& member : members) {
        object.member(member.key);
        switch (member.as) {
        case Written::Value:
            appendValue(out, *member.value, depth + 1);
            break;
        case Written::Alerts:
            appendAlerts(out, *member.value, depth + 1);
            break;
        case Written::NumberOrNull:
            appendNumberOrNull(out, *member.value);
            break;
        }
    }
}

void writeObjectWithRecords(std::ostream& stream, const QJsonObject& members,
                            const std::vector<RecordListMember>& lists, int depth)
{
    const RecordListMember noList;
    std::map<QString, const RecordListMember*> ordered;
    for (auto it = members.constBegin(); it != members.constEnd(); ++it)
        ordered.emplace(it.key(), &noList);
    for (const RecordListMember& list : lists)
        ordered.insert_or_assign(list.key, &list);

    std::string out = indentation(depth) + "{\n";
    const auto flush = [&stream, &out](size_t above) {
        if (out.size() > above) {
            stream.write(out.data(), static_cast<std::streamsize>(out.size()));
            out.clear();
        }
    };
    bool first = true;
    for (const auto& [key, list] : ordered) {
        out += first ? "" : ",\n";
        first = false;
        out += indentation(depth + 1);
        appendJson(out, key, depth + 1);
        out += ": ";
        if (list == &noList) {
            appendJson(out, members.value(key), depth + 1);
            continue;
        }
        const QVariantList& records = list->records;
        out += records.isEmpty() ? "[" : "[\n";
        app::inOrderedBatches<std::string>(
            records.size(),
            [&](qsizetype i, std::string& text) {
                text = indentation(depth + 2);
                appendRecordJson(text, records.at(i).toMap(), list->kind, depth + 2);
                text += i + 1 < records.size() ? ",\n" : "\n";
            },
            [&](qsizetype, const std::string& text) {
                out += text;
                flush(1 << 16);
                return true;
            });
        out += (records.isEmpty() ? "" : indentation(depth + 1)) + "]";
    }
    out += "\n" + indentation(depth) + "}";
    flush(0);
}

std::string envelopeOpening(const QJsonObject& head)
{
    QByteArray text = jsonText(head).trimmed();
    text.chop(1); // the closing brace
    return text.trimmed().toStdString() + ",\n    \"documents\": [\n";
}

std::string envelopeClosing(bool anyDocument)
{
    return std::string(anyDocument ? "\n" : "") + "    ]\n}\n";
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
        {QStringLiteral("numberOfPages"), parsedValue(numberOrNullText(info.numberOfPagesStr()))},
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
