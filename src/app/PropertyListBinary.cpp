// Our own reader of binary property lists: it validates every offset itself and tells signed from
// unsigned integers, which the common C library neither reports nor distinguishes.
#include "app/PropertyListBinary.h"

#include <QDateTime>
#include <QTimeZone>
#include <QVariantList>
#include <QVariantMap>

#include <cstring>
#include <limits>
#include <optional>
#include <vector>

namespace quillon::app {

namespace {

constexpr int kMaxDepth = 512;
constexpr size_t kTrailerSize = 32;
// Seconds from 1970-01-01 to 2001-01-01, the epoch of binary plist dates.
constexpr qint64 kAppleEpochOffset = 978307200;

class BinaryReader {
public:
    BinaryReader(const QByteArray& bytes, const QString& source)
        : m_data(reinterpret_cast<const unsigned char*>(bytes.constData())), m_size(static_cast<size_t>(bytes.size())),
          m_source(source)
    {
    }

    Result<QVariant> read()
    {
        if (m_size < 8 + kTrailerSize || std::memcmp(m_data, "bplist0", 7) != 0)
            return error(0, QStringLiteral("truncated binary property list (%1 bytes)").arg(m_size));
        const unsigned char* trailer = m_data + m_size - kTrailerSize;
        m_offsetSize = trailer[6];
        m_refSize = trailer[7];
        const quint64 objectCount = bigEndian(trailer + 8, 8);
        const quint64 topObject = bigEndian(trailer + 16, 8);
        const quint64 tableOffset = bigEndian(trailer + 24, 8);
        const size_t trailerAt = m_size - kTrailerSize;
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_refSize < 1 || m_refSize > 8)
            return error(trailerAt, QStringLiteral("the trailer gives impossible offset or reference sizes (%1, %2); "
                                                   "the file is damaged or truncated")
                                        .arg(m_offsetSize)
                                        .arg(m_refSize));
        if (objectCount == 0 || topObject >= objectCount)
            return error(trailerAt, QStringLiteral("the trailer's object count or top object is wrong; the file is "
                                                   "damaged or truncated"));
        if (tableOffset < 8 || tableOffset > trailerAt || objectCount > (trailerAt - tableOffset) / m_offsetSize)
            return error(trailerAt,
                         QStringLiteral("the offset table lies outside the file; the file is damaged or truncated"));
        m_tableOffset = static_cast<size_t>(tableOffset);
        m_objectCount = static_cast<size_t>(objectCount);
        m_objectsEnd = m_tableOffset;
        m_cache.assign(m_objectCount, std::nullopt);
        m_inProgress.assign(m_objectCount, false);
        return object(static_cast<size_t>(topObject), 0);
    }

private:
    static quint64 bigEndian(const unsigned char* p, size_t n)
    {
        quint64 v = 0;
        for (size_t i = 0; i < n; ++i)
            v = (v << 8) | p[i];
        return v;
    }

    Error error(size_t offset, const QString& message) const
    {
        return makeError(message, m_source, QStringLiteral("offset %1").arg(offset));
    }

    bool fits(size_t offset, quint64 length) const { return offset <= m_objectsEnd && length <= m_objectsEnd - offset; }

    Result<QVariant> object(size_t index, int depth)
    {
        if (depth > kMaxDepth)
            return error(0, QStringLiteral("values nested more than %1 deep").arg(kMaxDepth));
        if (m_cache[index])
            return *m_cache[index];
        const size_t offset =
            static_cast<size_t>(bigEndian(m_data + m_tableOffset + index * m_offsetSize, m_offsetSize));
        if (offset < 8 || offset >= m_objectsEnd)
            return error(m_tableOffset + index * m_offsetSize,
                         QStringLiteral("object %1 starts outside the object area").arg(index));
        if (m_inProgress[index])
            return error(offset, QStringLiteral("object %1 contains itself").arg(index));
        m_inProgress[index] = true;
        Result<QVariant> v = decode(offset, depth);
        m_inProgress[index] = false;
        if (v)
            m_cache[index] = *v;
        return v;
    }

    // The element count of a container, string or data object: the low nibble, or an integer
    // object that follows when the nibble is 0xF. Advances `at` past the count.
    Result<quint64> count(size_t marker, size_t& at) const
    {
        const unsigned nibble = m_data[marker] & 0x0F;
        at = marker + 1;
        if (nibble != 0x0F)
            return quint64(nibble);
        if (!fits(at, 1) || (m_data[at] & 0xF0) != 0x10)
            return error(at, QStringLiteral("a length is missing or is not an integer"));
        const size_t width = size_t(1) << (m_data[at] & 0x0F);
        if (width > 8 || !fits(at + 1, width))
            return error(at, QStringLiteral("a length runs past the end of the objects"));
        const quint64 n = bigEndian(m_data + at + 1, width);
        at += 1 + width;
        return n;
    }

    Result<QVariant> decode(size_t offset, int depth)
    {
        const unsigned char marker = m_data[offset];
        const unsigned high = marker >> 4;
        const unsigned low = marker & 0x0F;
        switch (high) {
        case 0x0:
            if (marker == 0x08 || marker == 0x09)
                return QVariant(marker == 0x09);
            return error(offset, QStringLiteral("a null or fill object, which a property list cannot hold"));
        case 0x1:
            return integer(offset, low);
        case 0x2:
            return real(offset, low);
        case 0x3:
            if (marker != 0x33 || !fits(offset + 1, 8))
                return error(offset, QStringLiteral("a broken date"));
            return date(offset);
        case 0x4:
        case 0x5:
        case 0x6:
            return bytesLike(offset, high);
        case 0x8: {
            const size_t width = low + 1u;
            if (!fits(offset + 1, width))
                return error(offset, QStringLiteral("a reference number runs past the end of the objects"));
            return QVariant(QVariantMap{{QStringLiteral("CF$UID"), qint64(bigEndian(m_data + offset + 1, width))}});
        }
        case 0xA:
            return array(offset, depth);
        case 0xD:
            return dict(offset, depth);
        default:
            return error(offset, QStringLiteral("unknown object marker 0x%1").arg(marker, 2, 16, QLatin1Char('0')));
        }
    }

    Result<QVariant> integer(size_t offset, unsigned low) const
    {
        if (low > 4)
            return error(offset, QStringLiteral("an integer of unsupported width"));
        const size_t width = size_t(1) << low;
        if (!fits(offset + 1, width))
            return error(offset, QStringLiteral("an integer runs past the end of the objects"));
        const unsigned char* p = m_data + offset + 1;
        if (width == 16) {
            // Writers use 16 bytes only for values above the signed 64-bit range.
            const quint64 upper = bigEndian(p, 8);
            const quint64 lower = bigEndian(p + 8, 8);
            if (upper == 0)
                return lower > quint64(std::numeric_limits<qint64>::max()) ? QVariant(lower) : QVariant(qint64(lower));
            if (upper == ~quint64(0) && (lower >> 63) == 1)
                return QVariant(static_cast<qint64>(lower));
            return error(offset, QStringLiteral("an integer too large to read"));
        }
        const quint64 v = bigEndian(p, width);
        // 1, 2 and 4 bytes are unsigned; 8 bytes are signed.
        return width == 8 ? QVariant(static_cast<qint64>(v)) : QVariant(qint64(v));
    }

    Result<QVariant> real(size_t offset, unsigned low) const
    {
        if (low != 2 && low != 3)
            return error(offset, QStringLiteral("a real of unsupported width"));
        const size_t width = size_t(1) << low;
        if (!fits(offset + 1, width))
            return error(offset, QStringLiteral("a real runs past the end of the objects"));
        const quint64 bits = bigEndian(m_data + offset + 1, width);
        if (width == 4) {
            float f;
            const auto b32 = static_cast<quint32>(bits);
            std::memcpy(&f, &b32, 4);
            return QVariant(double(f));
        }
        double d;
        std::memcpy(&d, &bits, 8);
        return QVariant(d);
    }

    Result<QVariant> date(size_t offset) const
    {
        double seconds;
        const quint64 bits = bigEndian(m_data + offset + 1, 8);
        std::memcpy(&seconds, &bits, 8);
        // Years 1 to 9999, what a date can show.
        if (!(seconds > -63113904000.0 && seconds < 252423993600.0))
            return error(offset, QStringLiteral("a date out of range"));
        const auto msecs = static_cast<qint64>((seconds + double(kAppleEpochOffset)) * 1000.0);
        return QVariant(QDateTime::fromMSecsSinceEpoch(msecs, QTimeZone::utc()));
    }

    Result<QVariant> bytesLike(size_t offset, unsigned kind) const
    {
        size_t at = 0;
        Result<quint64> n = count(offset, at);
        if (!n)
            return n.error();
        const quint64 unit = kind == 0x6 ? 2 : 1;
        if (*n > std::numeric_limits<quint64>::max() / unit || !fits(at, *n * unit))
            return error(offset, QStringLiteral("a string or data object runs past the end of the objects"));
        const char* p = reinterpret_cast<const char*>(m_data + at);
        const auto length = static_cast<qsizetype>(*n);
        if (kind == 0x4)
            return QVariant(QByteArray(p, length));
        if (kind == 0x5)
            return QVariant(QString::fromLatin1(p, length));
        QString text(length, Qt::Uninitialized);
        for (qsizetype i = 0; i < length; ++i)
            text[i] = QChar(static_cast<char16_t>(bigEndian(m_data + at + 2 * size_t(i), 2)));
        return QVariant(text);
    }

    // Reads `n` object references starting at `at`, each checked against the object count.
    Result<std::vector<size_t>> references(size_t container, size_t at, quint64 n) const
    {
        if (n > m_objectsEnd || !fits(at, n * m_refSize))
            return error(container, QStringLiteral("a container's references run past the end of the objects"));
        std::vector<size_t> refs(static_cast<size_t>(n));
        for (size_t i = 0; i < refs.size(); ++i) {
            const quint64 ref = bigEndian(m_data + at + i * m_refSize, m_refSize);
            if (ref >= m_objectCount)
                return error(at + i * m_refSize,
                             QStringLiteral("a reference to object %1, which does not exist").arg(ref));
            refs[i] = static_cast<size_t>(ref);
        }
        return refs;
    }

    Result<QVariant> array(size_t offset, int depth)
    {
        size_t at = 0;
        Result<quint64> n = count(offset, at);
        if (!n)
            return n.error();
        Result<std::vector<size_t>> refs = references(offset, at, *n);
        if (!refs)
            return refs.error();
        QVariantList list;
        list.reserve(static_cast<qsizetype>(refs->size()));
        for (const size_t ref : *refs) {
            Result<QVariant> v = object(ref, depth + 1);
            if (!v)
                return v.error();
            list.append(std::move(*v));
        }
        return QVariant(list);
    }

    Result<QVariant> dict(size_t offset, int depth)
    {
        size_t at = 0;
        Result<quint64> n = count(offset, at);
        if (!n)
            return n.error();
        if (*n > m_objectsEnd)
            return error(offset, QStringLiteral("a dictionary's size runs past the end of the objects"));
        Result<std::vector<size_t>> refs = references(offset, at, *n * 2);
        if (!refs)
            return refs.error();
        QVariantMap map;
        const size_t half = static_cast<size_t>(*n);
        for (size_t i = 0; i < half; ++i) {
            Result<QVariant> key = object((*refs)[i], depth + 1);
            if (!key)
                return key.error();
            if (key->typeId() != QMetaType::QString)
                return error(offset, QStringLiteral("a dictionary key that is not a string"));
            Result<QVariant> v = object((*refs)[half + i], depth + 1);
            if (!v)
                return v.error();
            map.insert(key->toString(), std::move(*v));
        }
        return QVariant(map);
    }

    const unsigned char* m_data;
    size_t m_size;
    QString m_source;
    unsigned m_offsetSize = 0;
    unsigned m_refSize = 0;
    size_t m_tableOffset = 0;
    size_t m_objectCount = 0;
    size_t m_objectsEnd = 0;
    std::vector<std::optional<QVariant>> m_cache;
    std::vector<bool> m_inProgress;
};

} // namespace

Result<QVariant> parseBinaryPropertyList(const QByteArray& bytes, const QString& sourceName)
{
    return BinaryReader(bytes, sourceName).read();
}

} // namespace quillon::app
