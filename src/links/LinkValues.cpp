#include "links/LinkValues.h"

#include "app/Log.h"
#include "app/Numbers.h"
#include "app/PathComponents.h"
#include "idml/TextFields.h"
#include "links/LinkRecordKeys.h"

#include <QHash>

#include <cmath>

using namespace quillon::idml;

namespace quillon::links {

namespace {

// Hexadecimal digits at the start of `text` (after blanks and an optional "0x"), low 32 bits.
std::uint32_t scanHex(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace())
        ++i;
    if (i + 1 < text.size() && text[i] == u'0' && (text[i + 1] == u'x' || text[i + 1] == u'X'))
        i += 2;
    std::uint32_t value = 0;
    for (; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        const int digit = (c >= u'0' && c <= u'9')   ? c - u'0'
                          : (c >= u'a' && c <= u'f') ? c - u'a' + 10
                          : (c >= u'A' && c <= u'F') ? c - u'A' + 10
                                                     : -1;
        if (digit < 0)
            break;
        value = (value << 4) | static_cast<std::uint32_t>(digit);
    }
    return value;
}

std::uint32_t hexAfter(const QString& text, qsizetype prefixLength)
{
    const std::uint32_t value = scanHex(QStringView(text).mid(std::min(prefixLength, text.size())));
    if (value == 0) {
        app::logLine(QStringLiteral("str: %1").arg(text));
        app::logLine(QStringLiteral("hexInt == 0"));
    }
    return value;
}

// Seconds between 1601-01-01 and 1970-01-01, the two epochs of FILETIME and Unix time.
constexpr qint64 kFiletimeEpochOffset = 11644473600LL;

} // namespace

std::uint32_t sizeBytesFromString(const QString& text)
{
    return hexAfter(text, 2);
}

QString idStringFromHexString(const QString& text)
{
    return QString::number(hexAfter(text, 1));
}

QString fileKindFromString(const QString& format, const QString& path)
{
    if (format.contains(QLatin1String("Port")))
        return format.endsWith(QLatin1String("(PDF)")) ? kLinkKindPDF : kLinkKindPNG;
    if (!format.isEmpty())
        return format;
    app::logLine(QStringLiteral("-> !format.length: unlikely case"));
    static const QHash<QString, QString> kinds{
        {QStringLiteral("tif"), kLinkKindTIFF},      {QStringLiteral("jpg"), kLinkKindJPEG},
        {QStringLiteral("psd"), kLinkKindPhotoshop}, {QStringLiteral("ai"), kLinkKindPDFFromAI},
        {QStringLiteral("eps"), kLinkKindEPS},       {QStringLiteral("png"), kLinkKindPNG},
        {QStringLiteral("gif"), kLinkKindGIF},
    };
    return kinds.value(app::pathExtension(path), kLinkKindUnknown);
}

QString fileSizeFormat(std::uint64_t bytes)
{
    if (bytes > 999'999'999ULL)
        return app::formatTwoDecimals(std::round(static_cast<double>(bytes) / 1e7) / 100.0) + QStringLiteral(" GB");
    if (bytes > 1'000'000ULL)
        return app::formatOneDecimal(std::round(static_cast<double>(bytes) / 1e5) / 10.0) + QStringLiteral(" MB");
    return QStringLiteral("%1 KB").arg(bytes >= 1000 ? bytes / 1000 : 1);
}

ScaleValues scaleValuesFromTransformStr(const QString& transform)
{
    const QStringList parts = transform.split(u' ');
    const auto number = [&parts](int i) { return i < parts.size() ? leadingDouble(parts[i]) : 0.0; };
    const double hor = 100.0 * std::sqrt(number(0) * number(0) + number(1) * number(1));
    const double vert = 100.0 * std::sqrt(number(2) * number(2) + number(3) * number(3));
    ScaleValues values{QString(), app::formatOneDecimal(hor), app::formatOneDecimal(vert)};
    values.scale = values.horScale == values.vertScale ? values.horScale
                                                       : QStringLiteral("%1x%2").arg(values.horScale, values.vertScale);
    return values;
}

LinkColor colorFromSpace(const QString& space)
{
    QString color = space;
    color.remove(QStringLiteral("$ID/#Links_"));
    if (color.isEmpty() || color == QLatin1String("CMYK") || color == QLatin1String("RGB") ||
        color == QLatin1String("Grayscale") || color == kLinkColorBlackAndWhite ||
        color.contains(QLatin1String(" Inks")))
        return {color, false};
    static const QString panelPrefix = QStringLiteral("$ID/kLinksPanel");
    if (color == QLatin1String("Indexed RGB"))
        return {QStringLiteral("RGB"), true};
    if (color.startsWith(panelPrefix)) {
        color = color.mid(panelPrefix.size());
        if (color == QLatin1String("CMYKWithSpot"))
            color = QStringLiteral("CMYK + Spot");
        return {color, true};
    }
    return {kLinkColorUnknown, true};
}

QString statusFromDates(qint64 linkMSecs, qint64 fileMSecs)
{
    const double seconds = static_cast<double>(fileMSecs - linkMSecs) / 1000.0;
    const auto whole = static_cast<qint64>(std::trunc(seconds));
    if (whole == 0 || whole == -3600)
        return kLinkStatusOK;
    app::logLine(QStringLiteral("Modified: timeIntervalSinceDate: %1").arg(seconds, 0, 'f', 6));
    return kLinkStatusModified;
}

std::optional<QDateTime> linkDateFromAttributes(const QString& importModificationTime, const QString& importStamp)
{
    const QStringList stamp = importStamp.split(u' ');
    if (stamp.size() == 3 && stamp[0] == QLatin1String("file")) {
        bool ok = false;
        const qulonglong filetime = stamp[1].toULongLong(&ok);
        if (ok && filetime > 0) {
            const qint64 secondsSinceUnixEpoch = static_cast<qint64>(filetime / 10'000'000ULL) - kFiletimeEpochOffset;
            const qint64 millis = static_cast<qint64>((filetime % 10'000'000ULL) / 10'000ULL);
            return QDateTime::fromMSecsSinceEpoch(secondsSinceUnixEpoch * 1000 + millis, Qt::UTC);
        }
    }
    // "yyyy-MM-ddTHH:mm:ss" exactly (a blank may stand for the T), in the local time zone. Read by
    // hand: ten thousand links would spend most of their date time in a general parser.
    const QStringView text = importModificationTime;
    if (text.size() != 19 || text[4] != u'-' || text[7] != u'-' || (text[10] != u'T' && text[10] != u' ') ||
        text[13] != u':' || text[16] != u':')
        return std::nullopt;
    const auto number = [&text](qsizetype from, qsizetype length) {
        int value = 0;
        for (qsizetype i = from; i < from + length; ++i) {
            if (text[i] < u'0' || text[i] > u'9')
                return -1;
            value = value * 10 + (text[i].unicode() - u'0');
        }
        return value;
    };
    const int year = number(0, 4);
    const QDate date(year, number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    if (year < 0 || !date.isValid() || !time.isValid())
        return std::nullopt;
    const QDateTime local(date, time);
    if (!local.isValid())
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(local.toMSecsSinceEpoch(), Qt::UTC);
}

} // namespace quillon::links
