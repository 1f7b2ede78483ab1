// XML property lists: reading with pugixml and writing by hand in the layout macOS writes.
#include "app/PropertyList.h"

#include "app/ParallelFor.h"
#include "app/PropertyListBinary.h"

#include <QDateTime>
#include <QTimeZone>

#include <pugixml.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace quillon::app {

namespace {

constexpr int kMaxDepth = 512;

class XmlReader {
public:
    XmlReader(const QByteArray& bytes, const QString& sourceName) : m_bytes(bytes), m_source(sourceName) {}

    Result<QVariant> read()
    {
        if (Status ok = checkStart(); !ok)
            return ok.error();
        pugi::xml_document doc;
        const pugi::xml_parse_result parsed =
            doc.load_buffer(m_bytes.constData(), static_cast<size_t>(m_bytes.size()),
                            pugi::parse_default | pugi::parse_ws_pcdata_single, pugi::encoding_auto);
        if (!parsed)
            return errorAt(static_cast<qint64>(parsed.offset),
                           QStringLiteral("not well-formed XML (%1)").arg(QLatin1String(parsed.description())));
        pugi::xml_node root = doc.document_element();
        if (!root)
            return errorAt(0, QStringLiteral("no property list in the file"));
        pugi::xml_node top = root;
        if (std::string_view(root.name()) == "plist") {
            top = pugi::xml_node();
            for (pugi::xml_node child : root.children()) {
                if (child.type() == pugi::node_element) {
                    if (top)
                        return errorAt(child, QStringLiteral("more than one value at the top of the property list"));
                    top = child;
                } else if (isMeaningfulText(child)) {
                    return errorAt(child, QStringLiteral("unexpected text in <plist>"));
                }
            }
            if (!top)
                return errorAt(root, QStringLiteral("the property list is empty"));
        }
        return value(top, 0);
    }

private:
    // The parser skips text before the root element; a plist must start with markup (after one
    // optional byte-order mark), or it is not the file it claims to be.
    Status checkStart() const
    {
        qsizetype i = m_bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
        if (m_bytes.startsWith("\xFF\xFE") || m_bytes.startsWith("\xFE\xFF"))
            return {}; // UTF-16, checked by the parser after decoding
        while (i < m_bytes.size() &&
               (m_bytes[i] == ' ' || m_bytes[i] == '\t' || m_bytes[i] == '\r' || m_bytes[i] == '\n'))
            ++i;
        if (i >= m_bytes.size())
            return errorAt(i, QStringLiteral("the file holds no property list"));
        if (m_bytes[i] != '<')
            return errorAt(i, QStringLiteral("the file does not start with XML markup (a stray byte-order mark or "
                                             "other bytes before the first tag)"));
        return {};
    }

    static bool isMeaningfulText(pugi::xml_node node)
    {
        if (node.type() != pugi::node_pcdata && node.type() != pugi::node_cdata)
            return false;
        const std::string_view text = node.value();
        return text.find_first_not_of(" \t\r\n") != std::string_view::npos;
    }

    qint64 lineOf(qint64 offset) const
    {
        const qint64 end = std::min<qint64>(offset, m_bytes.size());
        return 1 + std::count(m_bytes.constData(), m_bytes.constData() + end, '\n');
    }

    Error errorAt(qint64 offset, const QString& message) const
    {
        return makeError(message, m_source, QStringLiteral("line %1").arg(lineOf(offset)));
    }

    Error errorAt(pugi::xml_node node, const QString& message) const
    {
        return errorAt(static_cast<qint64>(node.offset_debug()), message);
    }

    // The text of a leaf element; an element inside it is an error.
    Result<QString> leafText(pugi::xml_node node) const
    {
        QByteArray text;
        for (pugi::xml_node child : node.children()) {
            if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
                text += child.value();
            else if (child.type() == pugi::node_element)
                return errorAt(
                    child,
                    QStringLiteral("<%1> inside <%2>").arg(QLatin1String(child.name()), QLatin1String(node.name())));
        }
        return QString::fromUtf8(text);
    }

    Result<QVariant> value(pugi::xml_node node, int depth)
    {
        if (depth > kMaxDepth)
            return errorAt(node, QStringLiteral("values nested more than %1 deep").arg(kMaxDepth));
        const std::string_view name = node.name();
        if (name == "dict")
            return dict(node, depth);
        if (name == "array")
            return array(node, depth);
        if (name == "true" || name == "false") {
            if (node.first_child() && isMeaningfulText(node.first_child()))
                return errorAt(node, QStringLiteral("<%1/> must be empty").arg(QLatin1String(node.name())));
            return QVariant(name == "true");
        }
        Result<QString> text = leafText(node);
        if (!text)
            return text.error();
        if (name == "string")
            return QVariant(*text);
        if (name == "integer")
            return integer(node, text->trimmed());
        if (name == "real")
            return real(node, text->trimmed());
        if (name == "date")
            return date(node, text->trimmed());
        if (name == "data")
            return data(node, *text);
        if (name == "key")
            return errorAt(node, QStringLiteral("<key> outside a <dict>"));
        return errorAt(node, QStringLiteral("unknown element <%1>").arg(QString::fromUtf8(node.name())));
    }

    Result<QVariant> dict(pugi::xml_node node, int depth)
    {
        QVariantMap map;
        pugi::xml_node pendingKey;
        QString key;
        for (pugi::xml_node child : node.children()) {
            if (child.type() != pugi::node_element) {
                if (isMeaningfulText(child))
                    return errorAt(child, QStringLiteral("unexpected text in <dict>"));
                continue;
            }
            if (!pendingKey) {
                if (std::string_view(child.name()) != "key")
                    return errorAt(
                        child,
                        QStringLiteral("<%1> in <dict> where a <key> was expected").arg(QLatin1String(child.name())));
                Result<QString> text = leafText(child);
                if (!text)
                    return text.error();
                pendingKey = child;
                key = *text;
                continue;
            }
            if (std::string_view(child.name()) == "key")
                return errorAt(pendingKey, QStringLiteral("key \"%1\" has no value").arg(key));
            Result<QVariant> v = value(child, depth + 1);
            if (!v)
                return v.error();
            map.insert(key, std::move(*v));
            pendingKey = pugi::xml_node();
        }
        if (pendingKey)
            return errorAt(pendingKey, QStringLiteral("key \"%1\" has no value").arg(key));
        return QVariant(map);
    }

    Result<QVariant> array(pugi::xml_node node, int depth)
    {
        QVariantList list;
        for (pugi::xml_node child : node.children()) {
            if (child.type() != pugi::node_element) {
                if (isMeaningfulText(child))
                    return errorAt(child, QStringLiteral("unexpected text in <array>"));
                continue;
            }
            Result<QVariant> v = value(child, depth + 1);
            if (!v)
                return v.error();
            list.append(std::move(*v));
        }
        return QVariant(list);
    }

    Result<QVariant> integer(pugi::xml_node node, const QString& text) const
    {
        const QByteArray ascii = text.toLatin1();
        std::string_view digits(ascii.constData(), static_cast<size_t>(ascii.size()));
        bool negative = false;
        if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) {
            negative = digits.front() == '-';
            digits.remove_prefix(1);
        }
        int base = 10;
        if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
            base = 16;
            digits.remove_prefix(2);
        }
        quint64 magnitude = 0;
        const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, base);
        if (digits.empty() || ec == std::errc::invalid_argument || end != digits.data() + digits.size())
            return errorAt(node, QStringLiteral("<integer> holds \"%1\", which is not a whole number").arg(text));
        if (ec == std::errc::result_out_of_range)
            return errorAt(node, QStringLiteral("<integer> %1 is too large").arg(text));
        if (negative) {
            if (magnitude > quint64(std::numeric_limits<qint64>::max()) + 1)
                return errorAt(node, QStringLiteral("<integer> %1 is too small").arg(text));
            return QVariant(static_cast<qint64>(0 - magnitude));
        }
        if (magnitude > quint64(std::numeric_limits<qint64>::max()))
            return QVariant(static_cast<quint64>(magnitude));
        return QVariant(static_cast<qint64>(magnitude));
    }

    Result<QVariant> real(pugi::xml_node node, const QString& text) const
    {
        const QString lower = text.toLower();
        if (lower == QLatin1String("nan"))
            return QVariant(std::numeric_limits<double>::quiet_NaN());
        if (lower == QLatin1String("inf") || lower == QLatin1String("+inf") || lower == QLatin1String("infinity") ||
            lower == QLatin1String("+infinity"))
            return QVariant(std::numeric_limits<double>::infinity());
        if (lower == QLatin1String("-inf") || lower == QLatin1String("-infinity"))
            return QVariant(-std::numeric_limits<double>::infinity());
        bool ok = false;
        const double v = text.toDouble(&ok);
        if (!ok)
            return errorAt(node, QStringLiteral("<real> holds \"%1\", which is not a number").arg(text));
        return QVariant(v);
    }

    Result<QVariant> date(pugi::xml_node node, const QString& text) const
    {
        QDateTime dt = QDateTime::fromString(text, Qt::ISODate);
        if (!dt.isValid())
            return errorAt(node, QStringLiteral("<date> holds \"%1\", which is not a date").arg(text));
        if (!text.endsWith(u'Z') && dt.timeSpec() == Qt::LocalTime)
            dt = QDateTime(dt.date(), dt.time(), QTimeZone::utc());
        return QVariant(dt.toUTC());
    }

    Result<QVariant> data(pugi::xml_node node, const QString& text) const
    {
        QByteArray compact;
        compact.reserve(text.size());
        for (const QChar c : text)
            if (!c.isSpace())
                compact += static_cast<char>(c.unicode() < 128 ? c.unicode() : '!');
        const auto decoded = QByteArray::fromBase64Encoding(compact, QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded)
            return errorAt(node, QStringLiteral("<data> is not valid base64"));
        return QVariant(decoded.decoded);
    }

    const QByteArray& m_bytes;
    QString m_source;
};

// Writes the XML form in one pass into one buffer. Data files hold tens of thousands of records,
// so nothing is allocated per value on the way: strings are escaped straight into the output and
// the key path of a value is only spelled out when it has to be named in an error.
class XmlWriter {
public:
    // With a sink, the text is handed to it in pieces as it is made (a data file of 200,000 records
    // is hundreds of megabytes of XML) and write() returns what is left over.
    explicit XmlWriter(const ChunkWriter* sink = nullptr) : m_sink(sink) {}

    Result<QByteArray> write(const QVariant& root)
    {
        m_out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                "<plist version=\"1.0\">\n";
        if (Status ok = value(root, 0); !ok)
            return ok.error();
        m_out += "</plist>\n";
        return QByteArray(m_out.data(), static_cast<qsizetype>(m_out.size()));
    }

    bool sinkFailed() const { return m_sinkFailed; }

private:
    // One step of the path to the value being written: a dictionary key or an array index.
    struct Step {
        const QString* key = nullptr;
        qsizetype index = 0;
    };

    QString path() const
    {
        QString text = QStringLiteral("(top)");
        for (const Step& step : m_path)
            text += step.key ? u'.' + *step.key : QStringLiteral("[%1]").arg(step.index);
        return text;
    }

    void appendEscaped(const QString& text)
    {
        // Most texts are plain ASCII that needs no escape: copied unit by unit, with no UTF-8
        // conversion made on the way.
        const QChar* units = text.constData();
        const size_t start = m_out.size();
        m_out.resize(start + static_cast<size_t>(text.size()));
        char* at = m_out.data() + start;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t unit = units[i].unicode();
            if (unit >= 0x80 || unit < 0x20 || unit == u'&' || unit == u'<' || unit == u'>') {
                m_out.resize(start);
                appendEscapedUtf8(text);
                return;
            }
            *at++ = static_cast<char>(unit);
        }
    }

    void appendEscapedUtf8(const QString& text)
    {
        const QByteArray utf8 = text.toUtf8();
        const auto needsWork = [](char c) {
            const auto u = static_cast<unsigned char>(c);
            return c == '&' || c == '<' || c == '>' || c == '\r' || (u < 0x20 && c != '\t' && c != '\n');
        };
        if (std::none_of(utf8.cbegin(), utf8.cend(), needsWork)) {
            m_out.append(utf8.constData(), static_cast<size_t>(utf8.size()));
            return;
        }
        for (const char c : utf8) {
            const auto u = static_cast<unsigned char>(c);
            if (c == '&')
                m_out += "&amp;";
            else if (c == '<')
                m_out += "&lt;";
            else if (c == '>')
                m_out += "&gt;";
            else if (u < 0x20 && c != '\t' && c != '\n' && c != '\r')
                continue; // not allowed in XML 1.0
            else if (c == '\r')
                m_out += "&#13;"; // a bare CR would be read back as a line feed
            else
                m_out += c;
        }
    }

    void indent(int depth) { m_out.append(static_cast<size_t>(depth), '\t'); }

    void open(int depth, const char* tag)
    {
        indent(depth);
        m_out += '<';
        m_out += tag;
        m_out += '>';
    }

    void close(const char* tag)
    {
        m_out += "</";
        m_out += tag;
        m_out += ">\n";
    }

    void leaf(int depth, const char* tag, QByteArrayView text)
    {
        open(depth, tag);
        m_out.append(text.data(), static_cast<size_t>(text.size()));
        close(tag);
    }

    void stringLeaf(int depth, const char* tag, const QString& text)
    {
        open(depth, tag);
        appendEscaped(text);
        close(tag);
    }

    static QByteArray realText(double v)
    {
        if (std::isnan(v))
            return "nan";
        if (std::isinf(v))
            return v < 0 ? "-inf" : "inf";
        char buffer[64];
        const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, v);
        QByteArray text(buffer, static_cast<qsizetype>(end - buffer));
        // Keep a real a real when read back by tools that look at the text.
        if (!text.contains('.') && !text.contains('e') && !text.contains('E'))
            text += ".0";
        return text;
    }

    // "yyyy-MM-ddTHH:mm:ssZ" of the UTC time.
    static QByteArray dateText(const QDateTime& dt)
    {
        const QDateTime utc = dt.toUTC();
        const QDate date = utc.date();
        const QTime time = utc.time();
        char buffer[32];
        const int length = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02dZ", date.year(),
                                         date.month(), date.day(), time.hour(), time.minute(), time.second());
        return QByteArray(buffer, length);
    }

    // Hands the text made so far to the sink once it is a piece's worth.
    Status passPiece()
    {
        constexpr qsizetype kPieceBytes = 1 << 20;
        if (m_sink && m_out.size() > kPieceBytes) {
            if (!(*m_sink)(QByteArrayView(m_out.data(), static_cast<qsizetype>(m_out.size())))) {
                m_sinkFailed = true;
                return makeError(QStringLiteral("the text could not be written"));
            }
            m_out.clear(); // keeps its capacity for the next piece
        }
        return {};
    }

    Status value(const QVariant& v, int depth)
    {
        if (Status passed = passPiece(); !passed)
            return passed;
        if (depth > kMaxDepth)
            return makeError(QStringLiteral("values nested more than %1 deep at %2").arg(kMaxDepth).arg(path()));
        switch (v.typeId()) {
        case QMetaType::QVariantMap:
            return dict(v.toMap(), depth);
        case QMetaType::QVariantHash: {
            QVariantMap map;
            const QVariantHash hash = v.toHash();
            for (auto it = hash.cbegin(); it != hash.cend(); ++it)
                map.insert(it.key(), it.value());
            return dict(map, depth);
        }
        case QMetaType::QVariantList:
        case QMetaType::QStringList:
            return array(v.toList(), depth);
        case QMetaType::QString:
            stringLeaf(depth, "string", *static_cast<const QString*>(v.constData()));
            return {};
        case QMetaType::QChar:
        case QMetaType::QUrl:
            stringLeaf(depth, "string", v.toString());
            return {};
        case QMetaType::Bool:
            indent(depth);
            m_out += v.toBool() ? "<true/>\n" : "<false/>\n";
            return {};
        case QMetaType::Int:
        case QMetaType::Long:
        case QMetaType::LongLong:
        case QMetaType::Short:
        case QMetaType::SChar:
            leaf(depth, "integer", QByteArray::number(v.toLongLong()));
            return {};
        case QMetaType::UInt:
        case QMetaType::ULong:
        case QMetaType::ULongLong:
        case QMetaType::UShort:
        case QMetaType::UChar:
            leaf(depth, "integer", QByteArray::number(v.toULongLong()));
            return {};
        case QMetaType::Double:
        case QMetaType::Float:
            leaf(depth, "real", realText(v.toDouble()));
            return {};
        case QMetaType::QDateTime:
        case QMetaType::QDate: {
            const QDateTime dt = v.toDateTime();
            if (!dt.isValid())
                return makeError(QStringLiteral("an invalid date at %1").arg(path()));
            leaf(depth, "date", dateText(dt));
            return {};
        }
        case QMetaType::QByteArray:
            data(v.toByteArray(), depth);
            return {};
        default:
            break;
        }
        if (!v.isValid() || v.isNull())
            return makeError(QStringLiteral("a property list cannot hold an empty value (at %1)").arg(path()));
        return makeError(QStringLiteral("a property list cannot hold a value of type %1 (at %2)")
                             .arg(QLatin1String(v.typeName()), path()));
    }

    void data(const QByteArray& bytes, int depth)
    {
        indent(depth);
        m_out += "<data>\n";
        const QByteArray encoded = bytes.toBase64();
        for (qsizetype i = 0; i < encoded.size(); i += 68) {
            indent(depth);
            m_out.append(encoded.constData() + i, static_cast<size_t>(std::min<qsizetype>(68, encoded.size() - i)));
            m_out += '\n';
        }
        indent(depth);
        m_out += "</data>\n";
    }

    Status dict(const QVariantMap& map, int depth)
    {
        indent(depth);
        if (map.isEmpty()) {
            m_out += "<dict/>\n";
            return {};
        }
        m_out += "<dict>\n";
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            stringLeaf(depth + 1, "key", it.key());
            m_path.push_back({&it.key(), 0});
            const Status ok = value(it.value(), depth + 1);
            m_path.pop_back();
            if (!ok)
                return ok;
        }
        indent(depth);
        m_out += "</dict>\n";
        return {};
    }

    Status array(const QVariantList& list, int depth)
    {
        indent(depth);
        if (list.isEmpty()) {
            m_out += "<array/>\n";
            return {};
        }
        m_out += "<array>\n";
        if (list.size() >= kItemsWrittenSideBySide && !m_withinSideBySide) {
            if (Status ok = itemsSideBySide(list, depth); !ok)
                return ok;
        } else {
            for (qsizetype i = 0; i < list.size(); ++i) {
                m_path.push_back({nullptr, i});
                const Status ok = value(list[i], depth + 1);
                m_path.pop_back();
                if (!ok)
                    return ok;
            }
        }
        indent(depth);
        m_out += "</array>\n";
        return {};
    }

    // The records of a data file are one long array: its items are written on several threads, a
    // batch at a time so that only a batch's text is held, and joined in order.
    static constexpr qsizetype kItemsWrittenSideBySide = 256;

    Status itemsSideBySide(const QVariantList& list, int depth)
    {
        struct Item {
            XmlWriter writer;
            Status written;
        };
        Status status;
        inOrderedBatches<Item>(
            list.size(),
            [&](qsizetype index, Item& item) {
                item.writer.m_withinSideBySide = true;
                item.writer.m_path = m_path;
                item.writer.m_path.push_back({nullptr, index});
                item.written = item.writer.value(list[index], depth + 1);
            },
            [&](qsizetype, Item& item) {
                status = item.written ? passPiece() : item.written;
                if (status)
                    m_out += item.writer.m_out;
                return bool(status);
            });
        return status;
    }

    const ChunkWriter* m_sink = nullptr;
    bool m_sinkFailed = false;
    bool m_withinSideBySide = false;
    std::string m_out;
    std::vector<Step> m_path;
};

} // namespace

Result<QVariant> parsePropertyList(const QByteArray& bytes, const QString& sourceName)
{
    if (bytes.startsWith("bplist"))
        return parseBinaryPropertyList(bytes, sourceName);
    if (bytes.trimmed().isEmpty())
        return makeError(QStringLiteral("the file is empty"), sourceName);
    return XmlReader(bytes, sourceName).read();
}

Result<QVariant> readPropertyListFile(const QString& path, qint64 maxBytes)
{
    Result<QByteArray> bytes = readRegularFile(path, maxBytes);
    if (!bytes)
        return bytes.error();
    return parsePropertyList(*bytes, path);
}

Result<QVariantMap> readPropertyListDictionary(const QString& path, qint64 maxBytes)
{
    Result<QVariant> value = readPropertyListFile(path, maxBytes);
    if (!value)
        return value.error();
    if (value->typeId() != QMetaType::QVariantMap)
        return makeError(QStringLiteral("the property list does not hold a dictionary at the top"), path);
    return value->toMap();
}

Result<QByteArray> toXmlPropertyList(const QVariant& root)
{
    return XmlWriter().write(root);
}

Status writePropertyListFile(const QVariant& root, const QString& path, Durability durability)
{
    return writeFileReplacing(
        path,
        [&root, &path](const ChunkWriter& write) -> Status {
            XmlWriter writer(&write);
            const Result<QByteArray> rest = writer.write(root);
            if (writer.sinkFailed() || (rest && !write(*rest)))
                return {}; // the file's own error is reported
            if (!rest)
                return makeError(rest.error().message, path);
            return {};
        },
        durability);
}

} // namespace quillon::app
