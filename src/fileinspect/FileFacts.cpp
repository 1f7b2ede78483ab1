#include "fileinspect/FileFacts.h"

#include "app/Numbers.h"
#include "app/NumericText.h"
#include "app/ParallelFor.h"
#include "app/RegularFile.h"
#include "fileinspect/ByteSource.h"
#include "fileinspect/IccProfile.h"
#include "fileinspect/ImageSource.h"
#include "fileinspect/PdfPages.h"
#include "fileinspect/QNPreflightMethods.h"
#include "fileinspect/ReaderLimits.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace quillon::fileinspect {

namespace {

struct KindTexts {
    QString name;
    // Why a file named as this kind is not one: the signature its content lacks.
    QString missingSignature;
};

KindTexts kindTexts(FileKind kind)
{
    switch (kind) {
    case FileKind::Photoshop:
        return {QStringLiteral("Photoshop"), QStringLiteral("not a Photoshop file (no 8BPS signature)")};
    case FileKind::EPS:
        return {QStringLiteral("EPS"), QStringLiteral("not an EPS file (no %!PS-Adobe or DOS EPS signature)")};
    case FileKind::Illustrator:
        return {QStringLiteral("Illustrator"),
                QStringLiteral("not an Illustrator file (no %!PS-Adobe or %PDF- signature)")};
    case FileKind::TIFF:
        return {QStringLiteral("TIFF"), QStringLiteral("not a TIFF file (no II* or MM* signature)")};
    case FileKind::JPEG:
        return {QStringLiteral("JPEG"), QStringLiteral("not a JPEG file (no FF D8 FF signature)")};
    case FileKind::PNG:
        return {QStringLiteral("PNG"), QStringLiteral("not a PNG file (no PNG signature)")};
    case FileKind::PDF:
        return {QStringLiteral("PDF"), QStringLiteral("not a PDF file (no %PDF- header in its first 1024 bytes)")};
    case FileKind::IccProfile:
        return {QStringLiteral("ICC profile"), QStringLiteral("not an ICC profile (no acsp signature)")};
    case FileKind::Unknown:
        break;
    }
    return {QStringLiteral("?"), {}};
}

FileKind kindByExtension(const QString& path)
{
    const QString extension = QFileInfo(path).suffix().toLower();
    if (extension == u"psd" || extension == u"psb")
        return FileKind::Photoshop;
    if (extension == u"eps" || extension == u"epsf" || extension == u"ps")
        return FileKind::EPS;
    if (extension == u"ai")
        return FileKind::Illustrator;
    if (extension == u"tif" || extension == u"tiff")
        return FileKind::TIFF;
    if (extension == u"jpg" || extension == u"jpeg")
        return FileKind::JPEG;
    if (extension == u"png")
        return FileKind::PNG;
    if (extension == u"pdf")
        return FileKind::PDF;
    return FileKind::Unknown;
}

// The kind by the file's first bytes alone; Unknown when they match no known signature. An
// Illustrator file is PostScript or PDF inside and is told by its ".ai" extension.
FileKind signatureKind(const ByteSource& file)
{
    const QByteArray head = file.read(0, 1024);
    const bool namedAi = kindByExtension(file.path()) == FileKind::Illustrator;
    if (head.startsWith("8BPS"))
        return FileKind::Photoshop;
    if (head.startsWith("\xC5\xD0\xD3\xC6"))
        return FileKind::EPS;
    if (head.startsWith("%!PS-Adobe"))
        return namedAi ? FileKind::Illustrator : FileKind::EPS;
    if (head.startsWith("\xFF\xD8\xFF"))
        return FileKind::JPEG;
    if (head.startsWith("\x89PNG"))
        return FileKind::PNG;
    if (head.startsWith(QByteArrayView("II*\0", 4)) || head.startsWith(QByteArrayView("MM\0*", 4)))
        return FileKind::TIFF;
    if (head.mid(36, 4) == "acsp")
        return FileKind::IccProfile;
    if (hasPdfHeader(head))
        return namedAi ? FileKind::Illustrator : FileKind::PDF;
    return FileKind::Unknown;
}

FileKind detectKind(const ByteSource& file)
{
    const FileKind bySignature = signatureKind(file);
    return bySignature != FileKind::Unknown ? bySignature : kindByExtension(file.path());
}

// The parts of a list the readers separate by carriage returns or line feeds.
QStringList listItems(const QString& list)
{
    static const QRegularExpression breaks(QStringLiteral("[\r\n]+"));
    QStringList items;
    for (const QString& item : list.split(breaks, Qt::SkipEmptyParts))
        if (const QString trimmed = item.trimmed(); !trimmed.isEmpty())
            items << trimmed;
    return items;
}

// "-" and "?" stand for no list.
QStringList readerList(const QString& list)
{
    return list == u"-" || list == u"?" ? QStringList() : listItems(list);
}

// False when the file's header could not be read.
bool addImageProperties(FileFacts& facts, const ByteSource& file)
{
    const std::optional<ImageProperties> properties = readImageProperties(file);
    if (!properties)
        return false;
    facts.pixelWidth = properties->pixelWidth;
    facts.pixelHeight = properties->pixelHeight;
    facts.colorMode = properties->colorMode;
    facts.profile = properties->profileName;
    if (facts.kind == FileKind::TIFF && properties->tiffCompression) {
        facts.tiffCompression = properties->tiffCompression;
        facts.tiffCompressionName = QNPreflightMethods::tiffCompressionName(*properties->tiffCompression);
    }
    return true;
}

void inspectPhotoshop(FileFacts& facts, const ByteSource& file, QNPreflightMethods& reader)
{
    // The signature alone ("8BPS" and nothing after it) is no Photoshop file to report on.
    if (!addImageProperties(facts, file)) {
        facts.error = QStringLiteral("is a Photoshop file whose header is cut short or damaged");
        return;
    }
    facts.profile = reader.psdPropsFromData(file).value(0);
    if (facts.colorMode == u"Duotone") {
        facts.duotoneInks = reader.psdDuotoneColors(file).split(QStringLiteral("\r\n"));
        const QStringList& types = QNPreflightMethods::duotoneTypes();
        if (facts.duotoneInks.size() <= types.size())
            facts.colorMode = types.value(facts.duotoneInks.size() - 1);
    }
}

// The blank-separated words on the line after the last `marker`.
QStringList numbersAfterLast(const QString& head, const QString& marker)
{
    const qsizetype at = head.lastIndexOf(marker);
    if (at < 0)
        return {};
    static const QRegularExpression lineEnd(QStringLiteral("[\r\n]"));
    return head.mid(at + marker.size(), 200).section(lineEnd, 0, 0).split(u' ', Qt::SkipEmptyParts);
}

// A Photoshop EPS: "%ImageData: width height bits mode ..." describes the pixels, and the
// high-resolution bounding box their size on the page.
void inspectRasterEps(FileFacts& facts, QString head, QNPreflightMethods& reader, const ByteSource& file)
{
    if (!head.contains(QLatin1String("ImageData")))
        head = reader.getRead1500ForPhotoshopEPSWithTIFFPreview(file);
    const QStringList numbers = numbersAfterLast(head, QStringLiteral("%ImageData: "));
    if (!numbers.isEmpty()) {
        facts.pixelWidth = app::intValueOfText(numbers.value(0));
        facts.pixelHeight = app::intValueOfText(numbers.value(1));
        const int bits = app::intValueOfText(numbers.value(2));
        switch (app::intValueOfText(numbers.value(3))) {
        case 1:
            facts.colorMode = bits == 1 ? QStringLiteral("Black and White") : QStringLiteral("Grayscale");
            break;
        case 2:
            facts.colorMode = QStringLiteral("Lab");
            break;
        case 3:
            facts.colorMode = QStringLiteral("RGB");
            break;
        case 4:
            facts.colorMode = QStringLiteral("CMYK");
            break;
        default:
            break;
        }
    }
    const double points =
        app::doubleValueOfText(numbersAfterLast(head, QStringLiteral("%%HiResBoundingBox: ")).value(2));
    if (facts.pixelWidth > 0 && points > 0)
        facts.resolution = app::formatNoDecimal(facts.pixelWidth / (points / 72.0));
    if (head.contains(QLatin1String("CustomColors: ("))) {
        const QVariantList spots = reader.spotColorsOfVectorEPS(head);
        facts.spotColorCount = spots.value(0).toString();
        facts.spotColors = readerList(spots.value(1).toString());
    }
}

void inspectEps(FileFacts& facts, const ByteSource& file, QNPreflightMethods& reader)
{
    const QString head = textFromBytes(file.read(0, 1500));
    if (head.contains(QLatin1String("ImageData")) || head.contains(QLatin1String("Adobe Photoshop "))) {
        inspectRasterEps(facts, head, reader, file);
        return;
    }
    const QVariantList vector = reader.readEPS1500(file, head);
    facts.colorMode = vector.value(0).toString();
    facts.spotColorCount = vector.value(1).toString();
    facts.spotColors = readerList(vector.value(2).toString());
    facts.fontCount = vector.value(3).toString();
    QString fonts = vector.value(4).toString();
    fonts.remove(QLatin1String("Embedded fonts:"));
    facts.fonts = readerList(fonts);
    facts.illustratorVersion = reader.aiVersion();
}

void inspectIllustrator(FileFacts& facts, const ByteSource& file, QNPreflightMethods& reader)
{
    facts.illustratorColorModel = reader.colorModeOfAIFile(file);
    facts.colorMode = facts.illustratorColorModel;
    const QNPreflightMethods::AIHeadAndFonts ai = reader.read4500AndFontsOfPreCS3AI(file);
    // A file that is PostScript from its first byte is its own head.
    const QString head4500 = textFromBytes(file.read(0, 4500));
    const QString comments = head4500.contains(QLatin1String("%!PS-Adobe-3.0")) ? head4500 : ai.head;
    facts.illustratorVersion = QNPreflightMethods::illustratorVersion(comments);
    if (comments.contains(QLatin1String("CustomColors: ("))) {
        const QVariantList spots = reader.spotColorsOfVectorEPS(comments);
        facts.spotColorCount = spots.value(0).toString();
        facts.spotColors = readerList(spots.value(1).toString());
    }
    facts.fonts = listItems(ai.fonts);
    if (!facts.fonts.isEmpty())
        facts.fontCount = QString::number(facts.fonts.size());
}

void inspectPdf(FileFacts& facts)
{
    const auto size = firstPageSize(facts.path);
    if (!size.ok()) {
        facts.error = size.error().message;
        return;
    }
    if (!size.value()) {
        facts.error = QStringLiteral("is a PDF without pages");
        return;
    }
    facts.pageWidth = size.value()->width;
    facts.pageHeight = size.value()->height;
}

} // namespace

QString fileKindName(FileKind kind)
{
    return kindTexts(kind).name;
}

FileKind detectFileKind(const QString& path)
{
    return detectKind(ByteSource::openFile(path));
}

FileFacts inspectFile(const QString& path, FileKind kind)
{
    FileFacts facts;
    facts.path = path;
    const ByteSource file = ByteSource::openFile(path);
    facts.kind = kind == FileKind::Unknown ? detectKind(file) : kind;
    if (!file.isOpen()) {
        facts.error = file.errorString();
        return facts;
    }
    // The kind comes from the content: a name alone ("empty.psd") proves nothing.
    if (kind == FileKind::Unknown && signatureKind(file) == FileKind::Unknown && facts.kind != FileKind::Unknown) {
        facts.error = kindTexts(facts.kind).missingSignature;
        return facts;
    }
    QNPreflightMethods reader;
    switch (facts.kind) {
    case FileKind::Photoshop:
        inspectPhotoshop(facts, file, reader);
        break;
    case FileKind::EPS:
        inspectEps(facts, file, reader);
        break;
    case FileKind::Illustrator:
        inspectIllustrator(facts, file, reader);
        break;
    case FileKind::TIFF:
    case FileKind::JPEG:
    case FileKind::PNG:
    case FileKind::Unknown: // perhaps another image format
        addImageProperties(facts, file);
        break;
    case FileKind::PDF:
        inspectPdf(facts);
        break;
    case FileKind::IccProfile:
        facts.profile = iccProfileDescription(file.read(0, kMaxProfileBytes));
        break;
    }
    if (file.readFailed())
        facts.error = file.errorString();
    return facts;
}

QList<FileFacts> inspectFiles(const QStringList& paths, int threads)
{
    QList<FileFacts> facts(paths.size());
    FileFacts* const slots = facts.data(); // detached once, before the threads write into it
    app::parallelFor(paths.size(), {.maxThreads = threads},
                     [&](int, qsizetype index) { slots[index] = inspectFile(paths.at(index)); });
    return facts;
}

QVariantMap factsRecord(const FileFacts& facts)
{
    using namespace factkeys;
    QVariantMap record{{kPath, app::displayPath(facts.path)}, {kKind, fileKindName(facts.kind)}};
    auto addText = [&record](const QString& key, const QString& value) {
        if (!value.isEmpty())
            record.insert(key, value);
    };
    auto addList = [&record](const QString& key, const QStringList& value) {
        if (!value.isEmpty())
            record.insert(key, value);
    };
    addText(kError, facts.error);
    addText(kColorMode, facts.colorMode);
    addText(kProfile, facts.profile);
    addList(kDuotoneInks, facts.duotoneInks);
    addText(kSpotColorCount, facts.spotColorCount);
    addList(kSpotColors, facts.spotColors);
    addText(kFontCount, facts.fontCount);
    addList(kFonts, facts.fonts);
    addText(kIllustratorColorModel, facts.illustratorColorModel);
    if (facts.illustratorVersion > 0)
        record.insert(kIllustratorVersion, qulonglong(facts.illustratorVersion));
    if (facts.tiffCompression)
        record.insert(kTiffCompression, *facts.tiffCompression);
    if (facts.tiffCompressionName)
        record.insert(kTiffCompressionName, *facts.tiffCompressionName);
    if (facts.pixelWidth > 0 && facts.pixelHeight > 0) {
        record.insert(kPixelWidth, facts.pixelWidth);
        record.insert(kPixelHeight, facts.pixelHeight);
    }
    addText(kResolution, facts.resolution);
    if (facts.pageWidth)
        record.insert(kPageWidth, *facts.pageWidth);
    if (facts.pageHeight)
        record.insert(kPageHeight, *facts.pageHeight);
    return record;
}

} // namespace quillon::fileinspect
