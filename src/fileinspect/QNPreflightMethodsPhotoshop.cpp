// The Photoshop side of the linked-file reader and its small shared utilities.
#include "fileinspect/QNPreflightMethods.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/Numbers.h"
#include "app/NumericText.h"
#include "fileinspect/ReaderLimits.h"

#include <QStringDecoder>

#include <algorithm>
#include <cmath>
#include <optional>

namespace quillon::fileinspect {

using app::logLine;

namespace {

// Reads a source in order, like a file handle: reads advance by what they got, and a read at or
// beyond the end gets nothing; seeks may go beyond the end.
class Cursor {
public:
    explicit Cursor(const ByteSource& source) : m_source(source) {}

    qint64 offset() const { return m_offset; }
    void seek(qint64 offset) { m_offset = std::max<qint64>(offset, 0); }
    QByteArray read(qint64 length)
    {
        QByteArray bytes = m_source.read(m_offset, length);
        m_offset += bytes.size();
        return bytes;
    }
    // Moves on by what a read of `length` bytes would get.
    void skipRead(qint64 length) { m_offset += std::clamp<qint64>(m_source.size() - m_offset, 0, length); }

private:
    const ByteSource& m_source;
    qint64 m_offset = 0;
};

// A whole number from a computed value; what cannot be one (infinite, not a number, out of
// range) reads 0.
int truncatedInt(double value)
{
    if (!std::isfinite(value) || value >= 2147483648.0 || value <= -2147483649.0)
        return 0;
    return static_cast<int>(value);
}

bool allZero(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == 0; });
}

// Strictly 7-bit bytes as text, or nothing.
std::optional<QString> strictAscii(QByteArrayView bytes)
{
    if (std::any_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) > 127; }))
        return std::nullopt;
    return valueTextFromBytes(bytes);
}

// UTF-16 text, big-endian unless a byte-order mark says otherwise; nothing when the bytes are
// not UTF-16 (an odd count, a broken surrogate pair).
std::optional<QString> utf16Text(QByteArrayView bytes)
{
    if (bytes.size() % 2 != 0)
        return std::nullopt;
    auto encoding = QStringConverter::Utf16BE;
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
        static_cast<unsigned char>(bytes[1]) == 0xFE)
        encoding = QStringConverter::Utf16LE;
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return withoutControlCharacters(text);
}

std::optional<QString> utf8Text(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return withoutControlCharacters(text);
}

// An alpha-channel name: UTF-16, else 7-bit ASCII, else UTF-8, else "<unknown>".
QString decodedName(QByteArrayView bytes)
{
    if (auto text = utf16Text(bytes))
        return *text;
    if (auto text = strictAscii(bytes))
        return *text;
    if (auto text = utf8Text(bytes))
        return *text;
    return QStringLiteral("<unknown>");
}

} // namespace

QNPreflightMethods::QNPreflightMethods(app::AlertSink* alerts) : m_alerts(alerts) {}

QNPreflightMethods QNPreflightMethods::pfmForAS(app::AlertSink* alerts)
{
    return QNPreflightMethods(alerts);
}

void QNPreflightMethods::alertUnparsable(const ByteSource& file) const
{
    const QString message =
        QStringLiteral("The file %1 could not be parsed.\n\nError: %2").arg(file.path(), file.errorString());
    logLine(QStringLiteral("-> can't read %1: %2").arg(file.path(), file.errorString()));
    if (m_alerts)
        app::runAlert(*m_alerts, QStringLiteral("Error"), app::withSupportContact(message), std::nullopt, true);
}

QString QNPreflightMethods::readFileAtPath(const QString& path, qint64 length) const
{
    logLine(QStringLiteral("> readFileAtPath >>>>>>>>>>>>>%1").arg(path.section(u'/', -1)));
    const ByteSource file = ByteSource::openFile(path);
    return textFromBytes(file.read(0, length));
}

quint32 QNPreflightMethods::intFromHex(QByteArrayView bytes)
{
    quint32 value = 0;
    for (qsizetype i = 0; i < std::min<qsizetype>(bytes.size(), 4); ++i)
        value = (value << 8) | static_cast<unsigned char>(bytes[i]);
    return value;
}

const QMap<QString, QString>& QNPreflightMethods::psdColors()
{
    static const QMap<QString, QString> colors{
        {QStringLiteral("0"), QStringLiteral("B&W")},     {QStringLiteral("1"), QStringLiteral("Grayscale")},
        {QStringLiteral("2"), QStringLiteral("Indexed")}, {QStringLiteral("3"), QStringLiteral("RGB")},
        {QStringLiteral("4"), QStringLiteral("CMYK")},    {QStringLiteral("7"), QStringLiteral("Multichannel")},
        {QStringLiteral("8"), QStringLiteral("Duotone")}, {QStringLiteral("9"), QStringLiteral("Lab")},
    };
    return colors;
}

const QStringList& QNPreflightMethods::duotoneTypes()
{
    static const QStringList types{QStringLiteral("Monotone"), QStringLiteral("Duotone"), QStringLiteral("Tritone"),
                                   QStringLiteral("Quadtone")};
    return types;
}

QStringList QNPreflightMethods::psdPropsFromData(const QString& path)
{
    return psdPropsFromData(ByteSource::openFile(path));
}

QStringList QNPreflightMethods::psdPropsFromData(const ByteSource& file)
{
    logLine(QStringLiteral("> psdPropsFromData"));
    Cursor cursor(file);
    cursor.seek(26);
    const quint32 colorModeLength = intFromHex(cursor.read(4));
    if (colorModeLength != 0) {
        const qint64 start = cursor.offset();
        logLine(QStringLiteral("colorModeData: %1").arg(intFromHex(cursor.read(4))));
        cursor.seek(start);
        cursor.skipRead(colorModeLength);
    }
    const quint32 resourcesLength = intFromHex(cursor.read(4));
    const qint64 end = cursor.offset() + resourcesLength;
    QString profile;

    // Sizes are deliberately not rounded up to even: the resource after an odd-sized one is
    // found again by looking for its signature near where it was expected.
    while (cursor.offset() < end && cursor.offset() < file.size()) {
        const qint64 resourceStart = cursor.offset();
        if (cursor.read(4) != "8BIM") {
            cursor.seek(cursor.offset() - 10);
            const qint64 windowStart = cursor.offset();
            const qsizetype found = cursor.read(50).toUpper().indexOf("8BIM");
            if (found < 0)
                break;
            cursor.seek(windowStart + found);
            cursor.read(4);
        }
        const quint32 id = intFromHex(cursor.read(2));
        cursor.skipRead(2);
        const quint32 dataSize = intFromHex(cursor.read(4));
        logLine(QStringLiteral("resIDTest%1 dataSizeTest%2").arg(id).arg(dataSize));
        if (id == 1039 && dataSize <= kMaxProfileBytes) {
            profile = profileName(cursor.read(dataSize), file);
        } else if (dataSize > 0) {
            cursor.seek(cursor.offset() + dataSize);
        }
        if (cursor.offset() <= resourceStart)
            break; // a broken file that would make us read the same place again
    }
    return {profile};
}

QString QNPreflightMethods::profileName(const QByteArray& profile, const QString& psdPath)
{
    if (const std::optional<QString> name = fixedProfileName(profile))
        return *name;
    readFromURL(psdPath, QStringLiteral("PSD"));
    return m_profName;
}

QString QNPreflightMethods::profileName(const QByteArray& profile, const ByteSource& psdFile)
{
    if (const std::optional<QString> name = fixedProfileName(profile))
        return *name;
    readFromURL(psdFile, QStringLiteral("PSD"));
    return m_profName;
}

std::optional<QString> QNPreflightMethods::fixedProfileName(const QByteArray& profile)
{
    // The first "desc" names the tag in the tag table; the second starts the tag's data, whose
    // text begins 12 bytes on.
    const qint64 length = profile.size();
    qint64 location = profile.indexOf("desc");
    if (location < 0)
        location = length;
    location = std::min(location + 4, length);
    qint64 second = profile.indexOf("desc", location);
    if (second < 0)
        second = length;
    const qint64 nameLocation = second + 12;
    if (nameLocation >= length) {
        logLine(QStringLiteral("-> can't get profile name: name location %1 exceeds data length %2")
                    .arg(nameLocation)
                    .arg(length));
        return std::nullopt;
    }
    // A fixed 26 bytes: longer names are cut, shorter ones keep what follows them.
    return valueTextFromBytes(midView(profile, nameLocation, 26));
}

QString QNPreflightMethods::psdDuotoneColors(const QString& path) const
{
    return psdDuotoneColors(ByteSource::openFile(path));
}

QString QNPreflightMethods::psdDuotoneColors(const ByteSource& file) const
{
    logLine(QStringLiteral("> psdDuotoneColors"));
    const QByteArray head = file.read(0, 331);
    auto field = [&head](int index) { return midView(head, 75 + 64 * index, 64); };

    const QByteArrayView first = field(0);
    QString inks = first.isEmpty() ? QStringLiteral("?") : valueTextFromBytes(first);
    logLine(QStringLiteral("ink: %1").arg(inks));
    static const char* const names[] = {"ink2: %1", "ink3 mutData: %1", "ink4: %1"};
    static const char* const emptyNames[] = {"ink2 empty: %1", "ink3 empty: %1", "ink4 empty: %1"};
    for (int i = 1; i < 4; ++i) {
        const QByteArrayView bytes = field(i);
        if (allZero(bytes)) {
            logLine(QString::fromLatin1(emptyNames[i - 1]).arg(QString::fromLatin1(bytes.toByteArray().toHex())));
            break;
        }
        const QString ink = valueTextFromBytes(bytes);
        logLine(QString::fromLatin1(names[i - 1]).arg(ink));
        inks += QStringLiteral("\r\n") + ink;
    }
    logLine(QStringLiteral("allInks: %1").arg(inks));
    return inks;
}

int QNPreflightMethods::resOfOldPSD(const ByteSource& file) const
{
    const QByteArray head = file.read(0, 1000);
    const qsizetype at = head.indexOf("Resolution");
    if (at < 0)
        return 0;
    return static_cast<int>(intFromHex(midView(head, at + 15, 2)));
}

QStringList QNPreflightMethods::alphaNames(const QByteArray& data)
{
    QStringList names;
    qint64 offset = 0;
    while (offset < data.size()) {
        const quint32 nameLength = intFromHex(midView(data, offset, 4));
        logLine(QStringLiteral("nameLength: %1").arg(nameLength));
        offset += 4;
        const QByteArrayView bytes = midView(data, offset, 2 * qint64(nameLength));
        const QString name = decodedName(bytes);
        logLine(QStringLiteral("nameData: %1").arg(name));
        names.append(name);
        offset += 2 * qint64(nameLength);
    }
    return names;
}

QStringList QNPreflightMethods::duotoneRes(const QString& points, const QString& pixels, const QString& horScale)
{
    logLine(QStringLiteral("> duotoneRes:"));
    QString scale = horScale;
    scale.replace(u',', u'.');
    const double actual = app::doubleValueOfText(pixels) / (app::doubleValueOfText(points) / 72.0);
    const double effective = actual * (100.0 / app::doubleValueOfText(scale));
    const QStringList result{QString::number(truncatedInt(actual)), QString::number(truncatedInt(effective))};
    logLine(QStringLiteral("arr: %1").arg(result.join(QStringLiteral(", "))));
    return result;
}

QString QNPreflightMethods::fileSize(double bytes)
{
    if (bytes <= 1024)
        return QStringLiteral("%1 bytes").arg(truncatedInt(bytes));
    if (bytes < 1048576)
        return QStringLiteral("%1 KB").arg(truncatedInt(bytes / 1024));
    if (bytes < 1073741824)
        return QString::asprintf("%1.1f MB", bytes / 1048576);
    return QString::asprintf("%1.2f GB", bytes / 1073741824);
}

QString QNPreflightMethods::finalScaleHor(double hor, double vert)
{
    const QString h = app::formatOneDecimal(std::fabs(hor));
    const QString v = app::formatOneDecimal(std::fabs(vert));
    return h == v ? h : QStringLiteral("%1x%2").arg(h, v);
}

} // namespace quillon::fileinspect
