// The PostScript side of the linked-file reader: the document-structuring comments of vector
// EPS files (colour mode, spot colours, fonts), the PostScript head of Photoshop EPS files, and
// the colour model, head and fonts of Illustrator files.
#include "fileinspect/QNPreflightMethods.h"

#include "app/Log.h"
#include "app/NumericText.h"
#include "fileinspect/ReaderLimits.h"

#include <cstring>

namespace quillon::fileinspect {

using app::logLine;

namespace {

const QString kNone = QStringLiteral("-");
const QString kUnknown = QStringLiteral("?");

QString fileName(const ByteSource& file)
{
    return file.path().section(u'/', -1);
}

// At most `count` characters from offset `at`; when fewer remain, all of them but the last
// (the reader has always dropped the last character of a short tail).
QString headFrom(const ByteSource& file, qint64 at, qint64 count)
{
    const qint64 remaining = file.size() - at;
    return textFromBytes(file.read(at, remaining >= count ? count : remaining - 1));
}

// The offset of the first byte at or after `at` that is not a blank or a line break; the text
// scanner the names were always read with passes over them.
qint64 skipWhitespace(const ByteSource& file, qint64 at)
{
    while (at < file.size()) {
        const QByteArray chunk = file.read(at, 4096);
        if (chunk.isEmpty())
            return at;
        for (char c : chunk) {
            if (c != ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\f' && c != '\v')
                return at;
            ++at;
        }
    }
    return at;
}

} // namespace

QVariantList QNPreflightMethods::readEPS1500AtPath(const QString& path, const QString& read1500)
{
    return readEPS1500(ByteSource::openFile(path), read1500);
}

QVariantList QNPreflightMethods::readEPS1500(const ByteSource& file, const QString& read1500)
{
    logLine(QStringLiteral("> readEPS1500AtPath >>>>>>>>>>>>>%1").arg(fileName(file)));
    const QString head = checkForCS3AndThumbInAIEPS(file, read1500);
    QVariantList result{colModeOfVectorEPS(file, head)};
    if (head.contains(QLatin1String("CustomColors: (")))
        result += spotColorsOfVectorEPS(head);
    else
        result += QVariantList{kNone, kNone};
    const app::FoundRange fonts = app::rangeOfFirstFoundStringFromArray(head, {QStringLiteral("%%DocumentFonts: ")});
    if (fonts.found())
        result += fontsOfVectorEPS(head, fonts, file);
    else
        result += QVariantList{kNone, kNone};
    if (app::debugLoggingEnabled()) {
        QStringList parts;
        for (const QVariant& value : result)
            parts << value.toString();
        logLine(QStringLiteral(">>>>>>>>>>>>>%1 %2").arg(fileName(file), parts.join(QStringLiteral(" | "))));
    }
    return result;
}

unsigned long QNPreflightMethods::illustratorVersion(const QString& head)
{
    // The two characters after the marker and one blank: "17" of "17.0", "8" of "8.0".
    const qsizetype creator = head.indexOf(QLatin1String("%%Creator: Adobe Illustrator(R)"));
    if (creator < 0)
        return 0;
    return static_cast<unsigned long>(std::max(0, app::intValueOfText(QStringView(head).mid(creator + 32, 2))));
}

QString QNPreflightMethods::checkForCS3AndThumbInAIEPS(const ByteSource& file, const QString& head)
{
    logLine(QStringLiteral("> checkForCS3AndThumbInAIEPS"));
    m_aiVersion = illustratorVersion(head);
    logLine(QStringLiteral("aiVersion %1").arg(m_aiVersion));
    if (m_aiVersion < 13 || !head.contains(QLatin1String("%AI7_Thumbnail:")))
        return head;

    // The colour comments follow the thumbnail: skip its N hex bytes and read on from there.
    const qsizetype begin = head.indexOf(QLatin1String("%%BeginData: "));
    const qsizetype hexBytes = begin < 0 ? -1 : head.indexOf(QLatin1String(" Hex Bytes"), begin + 13);
    if (hexBytes < 0)
        return head;
    const qint64 thumbnailLength = app::intValueOfText(QStringView(head).mid(begin + 13, hexBytes - begin - 13));
    const qint64 after = hexBytes + 10 + thumbnailLength;
    if (after < 0)
        return head;
    return textFromBytes(file.read(after, 1500));
}

QString QNPreflightMethods::colModeOfVectorEPS(const QString& path, const QString& read1500)
{
    return colModeOfVectorEPS(ByteSource::openFile(path), read1500);
}

QString QNPreflightMethods::colModeOfVectorEPS(const ByteSource& file, const QString& read1500)
{
    if (m_aiVersion == 0)
        return kNone;
    if (m_aiVersion <= 13) {
        if (read1500.contains(QLatin1String("%%DocumentProcessColors:"))) {
            logLine(QStringLiteral("CMYK - DocumentProcessColors"));
            return QStringLiteral("CMYK");
        }
        logLine(QStringLiteral("RGB -  no DocProcessCols"));
        return QStringLiteral("RGB");
    }

    // Later versions state the document colour mode in their XMP packet, anywhere in the file.
    logLine(QStringLiteral("start string with cont"));
    const qint64 mode = file.indexOf("<xmpG:mode>");
    if (!file.isOpen() || file.readFailed()) {
        logLine(QStringLiteral("err %1").arg(file.errorString()));
        return kUnknown;
    }
    logLine(QStringLiteral("end string with cont"));
    if (mode < 0) {
        logLine(QStringLiteral("mode not found"));
        return kUnknown;
    }
    const qint64 from = mode + 11;
    qint64 end = file.indexOf("</", from);
    if (end < 0)
        end = file.size();
    logLine(QStringLiteral("mode %1").arg(valueTextFromBytes(file.read(from, std::min<qint64>(end - from, 64)))));
    return file.indexOf("CMYK", from, end) >= 0 ? QStringLiteral("CMYK") : QStringLiteral("RGB");
}

QVariantList QNPreflightMethods::spotColorsOfVectorEPS(const QString& head) const
{
    logLine(QStringLiteral("> spotColorsOfVectorEPS"));
    // From after "DocumentCustomColors: (" to before ")", the line break and "%%" that precede
    // "%%CMYKCustomColor".
    const qsizetype start = head.indexOf(QLatin1String("DocumentCustomColors"));
    const qsizetype end = head.indexOf(QLatin1String("CMYKCustomColor"));
    if (start < 0 || end < 0 || end - 4 < start + 23)
        return {kNone, kNone};
    QString colors = head.mid(start + 23, end - 4 - (start + 23));
    colors.remove(QLatin1String("%%+ ("));
    const qsizetype closing = colors.count(u')');
    colors.remove(u')');
    colors = withoutControlCharacters(colors);
    return {int(closing + 1), colors};
}

QVariantList QNPreflightMethods::fontsOfVectorEPS(const QString& head, app::FoundRange docFontsRange,
                                                  const QString& path)
{
    return fontsOfVectorEPS(head, docFontsRange, ByteSource::openFile(path));
}

QVariantList QNPreflightMethods::fontsOfVectorEPS(const QString& head, app::FoundRange docFontsRange,
                                                  const ByteSource& file)
{
    logLine(QStringLiteral("> fontsOfVectorEPS"));
    const qsizetype at = docFontsRange.location;
    if (at + 18 < head.size() && head[at + 18] == u'%') {
        // The comment names no fonts on its own line: the fonts are embedded, if any.
        logLine(QStringLiteral("look for embd fonts"));
        const QStringList embedded = embeddedFontsOfVectorEPS(file);
        return {embedded.value(0), embedded.value(1)};
    }
    const app::FoundRange end = app::rangeOfFirstFoundStringFromArray(
        head, {QStringLiteral("%%DocumentNeededFonts:"), QStringLiteral("%%DocumentSuppliedFonts:"),
               QStringLiteral("%%DocumentSuppliedResources:")});
    const qsizetype from = at + 17;
    const qsizetype to = end.location - 2;
    if (!end.found() || to < from) {
        logLine(QStringLiteral("fontsOfVectorEPS unknown case"));
        return {kUnknown, kUnknown};
    }
    QString fonts = head.mid(from, to - from);
    const qsizetype continuations = fonts.count(QLatin1String("%%+ "));
    fonts.remove(QLatin1String("%%+ "));
    fonts = withoutControlCharacters(fonts);
    logLine(QStringLiteral("docFonts fontsOfVectorEPS %1").arg(fonts));
    return {int(continuations + 1), fonts};
}

QStringList QNPreflightMethods::embeddedFontsOfVectorEPS(const QString& path)
{
    return embeddedFontsOfVectorEPS(ByteSource::openFile(path));
}

QStringList QNPreflightMethods::embeddedFontsOfVectorEPS(const ByteSource& file)
{
    logLine(QStringLiteral("> embeddedFontsOfVectorEPS"));
    static constexpr QByteArrayView marker = "%ADOBeginSubsetFont: ";
    NameCollector fonts(false);
    qint64 at = file.indexOf(marker);
    while (at >= 0 && !fonts.full()) {
        // "%ADOBeginSubsetFont: ABCDEF+Name Initial" begins a font; later blocks add to it.
        const qint64 nameStart = at + marker.size();
        qint64 lineEnd = file.indexOf("\r", nameStart);
        if (lineEnd < 0)
            lineEnd = file.size();
        const qint64 initial = file.indexOf(" Initial", nameStart, lineEnd);
        if (initial >= 0) {
            fonts.add(valueTextFromBytes(file.read(nameStart, std::min(initial - nameStart, kMaxValueBytes))));
            logLine(QStringLiteral("font added"));
        }
        at = file.indexOf(marker, lineEnd);
    }
    if (!file.isOpen() || file.readFailed()) {
        alertUnparsable(file);
        return {kNone, kNone};
    }
    if (fonts.names().isEmpty())
        return {kNone, kNone};
    return {QStringLiteral("E%1").arg(fonts.names().size()),
            QStringLiteral("Embedded fonts:\r%1").arg(fonts.names().join(u'\r'))};
}

QString QNPreflightMethods::getRead1500ForPhotoshopEPSWithTIFFPreview(const QString& path)
{
    return getRead1500ForPhotoshopEPSWithTIFFPreview(ByteSource::openFile(path));
}

QString QNPreflightMethods::getRead1500ForPhotoshopEPSWithTIFFPreview(const ByteSource& file)
{
    logLine(QStringLiteral("> getRead1500ForPhotoshopEPSWithTIFFPreview"));
    const qint64 at = file.indexOf("%!PS-Adobe-3.0 EPSF-3.0");
    if (!file.isOpen() || file.readFailed()) {
        alertUnparsable(file);
        return {};
    }
    if (at < 0) {
        logLine(QStringLiteral("isAtEnd"));
        return {};
    }
    if (at == 0)
        return {}; // nothing precedes the PostScript: not a file with a preview header
    return headFrom(file, at, 1500);
}

QString QNPreflightMethods::colorModeOfAIFile(const QString& path) const
{
    return colorModeOfAIFile(ByteSource::openFile(path));
}

QString QNPreflightMethods::colorModeOfAIFile(const ByteSource& file) const
{
    logLine(QStringLiteral("> colorModeOfAIFile: %1").arg(file.path()));
    // Lines as a line reader with a 256-byte buffer gives them: up to and including a line feed,
    // at most 255 bytes; a longer line comes in pieces.
    static constexpr qint64 kLineLimit = 255;
    static constexpr QByteArrayView kMarker = "%AI9_ColorModel";
    qint64 offset = 0;
    while (offset < file.size()) {
        const QByteArray window = file.read(offset, ByteSource::kWindowSize);
        if (window.isEmpty())
            break;
        const bool lastWindow = offset + window.size() >= file.size();
        // The next marker in the window; a line holds it when it lies wholly inside the line.
        qsizetype marker = findBytes(window, kMarker);
        qsizetype lineStart = 0;
        while (lineStart < window.size()) {
            const qsizetype limit = std::min<qsizetype>(window.size(), lineStart + kLineLimit);
            const void* feed = std::memchr(window.constData() + lineStart, '\n', size_t(limit - lineStart));
            const qsizetype lineEnd = feed ? static_cast<const char*>(feed) - window.constData() + 1 : limit;
            if (!feed && lineEnd == window.size() && lineEnd - lineStart < kLineLimit && !lastWindow)
                break; // the line goes on in the next window
            if (marker >= 0 && marker < lineStart)
                marker = findBytes(window, kMarker, lineStart);
            if (marker < 0 && lastWindow)
                return kUnknown;
            if (marker >= 0 && marker + kMarker.size() <= lineEnd) {
                const QByteArrayView line = midView(window, lineStart, lineEnd - lineStart);
                const qsizetype model = findBytes(line, "ColorModel:");
                if (model < 0 || model + 12 >= line.size())
                    return kUnknown;
                const char digit = line[model + 12];
                logLine(QStringLiteral("colModel: %1").arg(QLatin1Char(digit)));
                return digit == '2' ? QStringLiteral("CMYK") : QStringLiteral("RGB");
            }
            lineStart = lineEnd;
        }
        if (lineStart == 0)
            break;
        offset += lineStart;
    }
    return kUnknown;
}

QNPreflightMethods::AIHeadAndFonts QNPreflightMethods::read4500AndFontsOfPreCS3AI(const QString& path)
{
    return read4500AndFontsOfPreCS3AI(ByteSource::openFile(path));
}

QNPreflightMethods::AIHeadAndFonts QNPreflightMethods::read4500AndFontsOfPreCS3AI(const ByteSource& file)
{
    logLine(QStringLiteral("> read4500AndFontsOfPreCS3AI"));
    const qint64 at = file.indexOf("%!PS-Adobe-3.0");
    AIHeadAndFonts result;
    if (at > 0) {
        result.head = headFrom(file, at, 4500);
        result.fonts = fontsOfAIFile(file);
    } else if (at < 0 && file.isOpen()) {
        logLine(QStringLiteral("isAtEnd, %!PS-Adobe-3.0 not found"));
    }
    if (!file.isOpen() || file.readFailed()) {
        alertUnparsable(file);
        return {};
    }
    return result;
}

QString QNPreflightMethods::fontsOfAIFile(const QString& text)
{
    return fontsOfAIFile(ByteSource::fromBytes(bytesFromText(text)));
}

QString QNPreflightMethods::fontsOfAIFile(const ByteSource& file)
{
    qint64 at = file.indexOf("/FontName");
    if (at == 0) {
        logLine(QStringLiteral("nothing scanned"));
        return {};
    }
    if (at < 0) {
        logLine(QStringLiteral("isAtEnd"));
        return {};
    }
    // "/FontName/ABCDEF+Name/" or "/FontName /ABCDEF+Name\r": the name starts after the six
    // letters of a subset prefix and its plus sign, and the form of the first entry holds for all.
    const bool slashForm = file.byteAt(at + 9) == '/';
    const QByteArrayView marker = slashForm ? QByteArrayView("/FontName/") : QByteArrayView("/FontName /");
    const QByteArrayView terminator = slashForm ? QByteArrayView("/") : QByteArrayView("\r");
    const qint64 nameOffset = slashForm ? 16 : 17;
    NameCollector fonts(true);
    while (at >= 0 && !fonts.full()) {
        qint64 start = at + nameOffset;
        if (file.byteAt(start) == '+')
            ++start;
        start = skipWhitespace(file, start);
        qint64 end = file.indexOf(terminator, start);
        if (end < 0)
            end = file.size();
        if (end > start)
            fonts.add(valueTextFromBytes(file.read(start, std::min(end - start, kMaxValueBytes))));
        at = file.indexOf(marker, std::max(end, start));
    }
    const QString list = fonts.names().join(u'\n');
    logLine(QStringLiteral("fonts: %1").arg(list));
    return list;
}

} // namespace quillon::fileinspect
