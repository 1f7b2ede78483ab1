#include "host/AppleScriptValue.h"

#include <QRegularExpression>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace quillon::host {

namespace {

class Reader {
public:
    explicit Reader(const QString& text) : m_text(text) {}

    QVariant value()
    {
        skipBlanks();
        if (atEnd())
            return QString();
        if (peek() == u'"')
            return quotedString();
        if (peek() == u'{')
            return listOrRecord();
        return bareValue();
    }

    bool atEnd() const { return m_pos >= m_text.size(); }
    void skipBlanks()
    {
        while (!atEnd() && m_text.at(m_pos).isSpace())
            ++m_pos;
    }

private:
    QChar peek() const { return m_text.at(m_pos); }

    QString quotedString()
    {
        QString out;
        ++m_pos; // opening quote
        while (!atEnd()) {
            const QChar c = m_text.at(m_pos++);
            if (c == u'"')
                return out;
            if (c == u'\\' && !atEnd()) {
                const QChar e = m_text.at(m_pos++);
                out += e == u'n' ? QChar(u'\n') : e == u't' ? QChar(u'\t') : e == u'r' ? QChar(u'\r') : e;
            } else {
                out += c;
            }
        }
        return out; // unterminated: keep what there is
    }

    // A record label: an identifier or |bars| followed by a colon.
    std::optional<QString> label()
    {
        const qsizetype start = m_pos;
        QString name;
        if (!atEnd() && peek() == u'|') {
            const qsizetype close = m_text.indexOf(u'|', m_pos + 1);
            if (close < 0)
                return std::nullopt;
            name = m_text.mid(m_pos + 1, close - m_pos - 1);
            m_pos = close + 1;
        } else {
            while (!atEnd() && (peek().isLetterOrNumber() || peek() == u'_' || peek() == u' '))
                name += m_text.at(m_pos++);
            name = name.trimmed();
        }
        skipBlanks();
        if (name.isEmpty() || atEnd() || peek() != u':') {
            m_pos = start;
            return std::nullopt;
        }
        ++m_pos;
        return name;
    }

    QVariant listOrRecord()
    {
        ++m_pos; // {
        QVariantList list;
        QVariantMap record;
        bool isRecord = false;
        skipBlanks();
        if (!atEnd() && peek() == u'}') {
            ++m_pos;
            return list;
        }
        while (!atEnd()) {
            skipBlanks();
            const std::optional<QString> name = label();
            if (name && (list.isEmpty() || isRecord)) {
                isRecord = true;
                record.insert(*name, value());
            } else {
                list << value();
            }
            skipBlanks();
            if (atEnd())
                break;
            const QChar c = m_text.at(m_pos++);
            if (c == u'}')
                break;
        }
        return isRecord ? QVariant(record) : QVariant(list);
    }

    // Up to the next comma or closing brace outside quotes, guillemets and braces.
    QVariant bareValue()
    {
        const qsizetype start = m_pos;
        int depth = 0;
        bool inQuotes = false;
        bool inChevrons = false;
        for (; !atEnd(); ++m_pos) {
            const QChar c = peek();
            if (inQuotes) {
                if (c == u'\\')
                    ++m_pos;
                else if (c == u'"')
                    inQuotes = false;
            } else if (inChevrons) {
                inChevrons = c != QChar(0x00BB);
            } else if (c == u'"') {
                inQuotes = true;
            } else if (c == QChar(0x00AB)) {
                inChevrons = true;
            } else if (c == u'{') {
                ++depth;
            } else if ((c == u',' || c == u'}') && depth == 0) {
                break;
            } else if (c == u'}') {
                --depth;
            }
        }
        const QString text = m_text.mid(start, m_pos - start).trimmed();
        return interpretBare(text);
    }

    static QVariant interpretBare(const QString& text)
    {
        if (text == QLatin1String("true"))
            return true;
        if (text == QLatin1String("false"))
            return false;
        if (text == QLatin1String("missing value"))
            return QVariant();
        static const QRegularExpression integer(QStringLiteral("^-?\\d+$"));
        static const QRegularExpression real(QStringLiteral("^-?(\\d+\\.\\d*|\\.\\d+|\\d+)([eE][+-]?\\d+)?$"));
        bool ok = false;
        if (integer.match(text).hasMatch()) {
            const qlonglong n = text.toLongLong(&ok);
            if (ok)
                return n;
        }
        if (real.match(text).hasMatch()) {
            const double d = text.toDouble(&ok);
            if (ok)
                return d;
        }
        return text;
    }

    const QString& m_text;
    qsizetype m_pos = 0;
};

} // namespace

QVariant parseAppleScriptValue(const QString& sourceText)
{
    const QString text = sourceText.trimmed();
    Reader reader(text);
    QVariant result = reader.value();
    reader.skipBlanks();
    // Trailing text means the value was not one literal ("document \"a\" of application \"b\"").
    if (!reader.atEnd())
        return text;
    return result;
}

} // namespace quillon::host
