#include "links/LinkMetadata.h"

#include "app/Log.h"
#include "app/Numbers.h"
#include "app/PathComponents.h"
#include "fileinspect/QNPreflightMethods.h"
#include "idml/TextFields.h"
#include "idml/XmlPath.h"
#include "links/LinkPaths.h"
#include "links/LinkRecordKeys.h"
#include "links/LinkValues.h"
#include "links/LinkedFileReader.h"

#include <QFileInfo>
#include <QUrl>

#include <cmath>

using namespace quillon::idml;

namespace quillon::links {

namespace {

using fileinspect::QNPreflightMethods;

constexpr auto kParseFlags = pugi::parse_default | pugi::parse_ws_pcdata_single;

QString childText(pugi::xml_node node, const char* name)
{
    return QString::fromStdString(textOf(node.child(name)));
}

// The texts of the elements reached through the given child names, in document order.
QStringList valuesAtPath(pugi::xml_node node, std::initializer_list<std::string_view> names)
{
    QStringList values;
    forEachAtPath(node, names, [&values](pugi::xml_node found) { values << QString::fromStdString(textOf(found)); });
    return values;
}

// Every occurrence of each piece removed.
QString withoutPieces(QString text, std::initializer_list<const char*> pieces)
{
    for (const char* piece : pieces)
        text.remove(QLatin1String(piece));
    return text;
}

// The kind's compression name of a TIFF compression code; a code outside the table reads
// "(null)", kept so because the link rules match the kind text.
QString tiffCompressionName(const QString& code)
{
    bool ok = false;
    const int number = code.toInt(&ok);
    const std::optional<QString> name = ok ? QNPreflightMethods::tiffCompressionName(number) : std::nullopt;
    return name.value_or(QStringLiteral("(null)"));
}

QString duotoneName(qsizetype inkCount)
{
    const QStringList& names = QNPreflightMethods::duotoneTypes();
    return inkCount >= 1 && inkCount <= names.size() ? names[inkCount - 1] : QStringLiteral("?");
}

// The `index`-th blank-separated number after the last occurrence of `marker`; none when the
// marker is absent.
std::optional<double> numberAfterLast(const QString& text, QLatin1String marker, int index)
{
    const qsizetype at = text.lastIndexOf(marker);
    if (at < 0)
        return std::nullopt;
    const QString rest = text.mid(at + marker.size(), 200);
    const QStringList parts = rest.split(u' ');
    if (index >= parts.size())
        return std::nullopt;
    return leadingDouble(parts[index]);
}

} // namespace

LinkMetadata::LinkMetadata(QVariantMap& record, const QString& path, bool linkedFileExists,
                           const LinkedFileReader& reader, app::AlertSink* alerts, const QString& documentFolder)
    : m_record(record), m_path(path), m_linkedFileExists(linkedFileExists), m_reader(reader), m_alerts(alerts),
      m_documentFolder(documentFolder)
{
}

bool LinkMetadata::iccProfileAndMoreFromMetadataStr(std::string_view packet, bool isTIFF, bool orEPS, bool orAI,
                                                    bool orINDD)
{
    app::logLine(QStringLiteral("> iccProfileAndMoreFromMetadataStr"));
    if (packet.empty()) {
        app::logLine(QStringLiteral("no md"));
        return false;
    }
    pugi::xml_document document;
    if (!document.load_buffer(packet.data(), packet.size(), kParseFlags, pugi::encoding_utf8))
        return false;
    const pugi::xml_node description = descriptionNodeFromXMLDoc(document);
    if (!description)
        return false;

    if ((orAI || orINDD || orEPS) && description.attribute("xmlns:stMfs"))
        linksFromDescriptionNode(description);
    if (orAI) {
        m_record.insert(kLinkProfileKey, QString());
        aiFontsAndColorsFromDescriptionNode(description);
        return true;
    }
    if (const QString profile = childText(description, "photoshop:ICCProfile"); !profile.isEmpty())
        m_record.insert(kLinkProfileKey, profile);
    if (isTIFF) {
        const QString compression = childText(description, "tiff:Compression");
        if (compression.isEmpty())
            return true;
        m_record.insert(kLinkKindKey, QStringLiteral("TIFF %1").arg(tiffCompressionName(compression)));
    } else if (orEPS) {
        if (const pugi::xml_node xResolution = description.child("tiff:XResolution")) {
            const QString resolution = resolutionFromMetadataEntry(QString::fromStdString(textOf(xResolution)));
            app::logLine(QStringLiteral("tiff:XResolution eps res: %1").arg(resolution));
            if (!resolution.isEmpty()) {
                m_record.insert(kLinkActualResKey, resolution);
                if (!m_record.value(kLinkHorScaleKey).toString().isEmpty())
                    setEffectiveResolutionFromActual(leadingDouble(resolution));
            }
        }
        if (childText(description, "photoshop:ColorMode") == QLatin1String("0"))
            m_record.insert(kLinkColorKey, kLinkColorBlackAndWhite);
    }
    return true;
}

void LinkMetadata::setEffectiveResolutionFromActual(double actual)
{
    // A scale of 0 (a graphic without a transform) cannot divide: the actual figure is scaled by
    // 100 instead, as the EPS reading has always done.
    const double horScale = leadingDouble(m_record.value(kLinkHorScaleKey).toString());
    const double factor = horScale > 0.0 ? 100.0 / horScale : 100.0;
    const QString effective = app::formatNoDecimal(actual * factor);
    app::logLine(QStringLiteral("effRes eps: %1").arg(effective));
    m_record.insert(kLinkEffectiveResKey, effective);
}

QString LinkMetadata::resolutionFromMetadataEntry(const QString& entry)
{
    const QStringList parts = entry.split(u'/');
    const double numerator = leadingDouble(parts.value(0));
    const double denominator = parts.size() > 1 ? leadingDouble(parts[1]) : 1.0;
    if (denominator == 0.0 || !std::isfinite(numerator / denominator))
        return {};
    return app::formatNoDecimal(numerator / denominator);
}

pugi::xml_node LinkMetadata::descriptionNodeFromXMLDoc(const pugi::xml_document& document)
{
    return document.document_element().child("rdf:RDF").child("rdf:Description");
}

QString LinkMetadata::nestedLinkPath(const QString& value, bool isURL) const
{
    if (!isURL)
        return value;
    if (isFileUri(value))
        return pathFromFileUri(value, m_documentFolder);
    return QUrl(value).path(QUrl::FullyDecoded);
}

void LinkMetadata::linksFromDescriptionNode(pugi::xml_node description)
{
    app::logLine(QStringLiteral("> linksFromDescriptionNode"));
    const pugi::xml_node manifest = description.child("xmpMM:Manifest");
    if (!manifest)
        return;
    const bool isInDesign = m_record.value(kLinkKindKey).toString().contains(QLatin1String("InDesign"));
    const QStringList values = isInDesign
                                   ? valuesAtPath(manifest, {"rdf:Bag", "rdf:li", "stMfs:reference", "stRef:lastURL"})
                                   : valuesAtPath(manifest, {"rdf:Seq", "rdf:li", "stMfs:reference", "stRef:filePath"});
    if (values.isEmpty())
        return;
    QVariantList links;
    for (const QString& value : values) {
        const QString path = nestedLinkPath(value, isInDesign);
        if (path.isEmpty())
            continue;
        const QFileInfo info(path);
        const bool present = info.exists();
        const auto bytes = present ? static_cast<qulonglong>(info.size()) : 0ULL;
        QVariantMap entry;
        entry.insert(kLinkPathKey, path);
        entry.insert(kLinkNameKey, app::lastPathComponent(path));
        entry.insert(kLinkStatusKey, present ? kLinkStatusOK : kLinkStatusMissing);
        entry.insert(kLinkSizeBytesKey, bytes);
        entry.insert(kLinkSizeKey, bytes == 0 ? kLinkNoSize : fileSizeFormat(bytes));
        links << entry;
    }
    m_record.insert(kLinkNestedLinksKey, links);
}

bool LinkMetadata::aiFontsAndColorsFromDescriptionNode(pugi::xml_node description)
{
    if (const pugi::xml_node fonts = description.child("xmpTPg:Fonts"))
        aiFontsFromXMLElements(fonts);
    if (const pugi::xml_node plates = description.child("xmpTPg:PlateNames"))
        aiColorsFromXMLElements(plates);
    else if (m_linkedFileExists)
        aiFontsAndColorsPreCS3();
    return true;
}

void LinkMetadata::aiFontsFromXMLElements(pugi::xml_node fonts)
{
    const QStringList names = valuesAtPath(fonts, {"rdf:Bag", "rdf:li", "stFnt:fontName"});
    m_record.insert(kLinkEpsFontListKey, names.join(u'\r'));
    // A number here, where the file readers give text; the records have always mixed the two.
    m_record.insert(kLinkEpsFontsKey, static_cast<int>(names.size()));
}

void LinkMetadata::aiColorsFromXMLElements(pugi::xml_node plateNames)
{
    QStringList plates = valuesAtPath(plateNames, {"rdf:Seq", "rdf:li"});
    if (plates.size() == 1 && plates.first() == QLatin1String("Black")) {
        m_record.insert(kLinkColorKey, QStringLiteral("Grayscale"));
        return;
    }
    for (const char* process : {"Black", "Cyan", "Magenta", "Yellow"})
        plates.removeAll(QLatin1String(process));
    if (plates.isEmpty())
        return;
    m_record.insert(kLinkEpsColListKey, plates.join(u'\r'));
    m_record.insert(kLinkEpsColsKey, static_cast<int>(plates.size()));
}

bool LinkMetadata::aiFontsAndColorsPreCS3()
{
    app::logLine(QStringLiteral("> aiFontsAndColorsPreCS3"));
    const QString head = m_reader.readFileAtPath(m_path, 4500);
    // A file with an XMP packet said all there is in it.
    if (head.contains(QLatin1String("<</Subtype/XML/")))
        return true;
    const LinkedFileReader::PreCS3AIHead preCS3 = m_reader.read4500AndFontsOfPreCS3AI(m_path, m_alerts);
    const QString& searched = head.contains(QLatin1String("%!PS-Adobe-3.0")) ? head : preCS3.text;
    if (!preCS3.fonts.isEmpty()) {
        m_record.insert(kLinkEpsFontsKey, QString::number(preCS3.fonts.split(u'\n').size()));
        m_record.insert(kLinkEpsFontListKey, preCS3.fonts);
    }
    if (searched.contains(QLatin1String("CustomColors: ("))) {
        if (const auto colors = customColorsInText(searched, true)) {
            m_record.insert(kLinkEpsColsKey, colors->count);
            m_record.insert(kLinkEpsColListKey, colors->list);
        }
    }
    return true;
}

std::optional<LinkMetadata::CustomColors> LinkMetadata::customColorsInText(const QString& text, bool orRGBEnd)
{
    const qsizetype start = text.indexOf(QLatin1String("DocumentCustomColors"));
    qsizetype end = text.indexOf(QLatin1String("CMYKCustomColor"));
    if (end < 0 && orRGBEnd)
        end = text.indexOf(QLatin1String("RGBCustomColor"));
    // The names run from after "DocumentCustomColors: (" to before ")\r%%" of the end comment.
    const qsizetype length = end - start - 27;
    if (start < 0 || end < 0 || length < 0)
        return std::nullopt;
    const QString raw = text.mid(start + 23, length);
    return CustomColors{QString::number(raw.split(u'\r').size()), withoutPieces(raw, {"%%+ (", ")"})};
}

bool LinkMetadata::processEPS()
{
    app::logLine(QStringLiteral("> processEPS"));
    const QString head = m_reader.readFileAtPath(m_path, 1500);
    const bool hasImageData = head.contains(QLatin1String("ImageData"));
    if (hasImageData || head.contains(QLatin1String("Adobe Photoshop "))) {
        propertiesOfRasterEPS(hasImageData, head);
        return true;
    }
    return vectorEPSColorsAndFonts(head);
}

void LinkMetadata::propertiesOfRasterEPS(bool hasImageData, QString read1500)
{
    app::logLine(QStringLiteral("> propertiesOfRasterEPS"));
    if (!hasImageData) {
        app::logLine(QStringLiteral("TIFF preview"));
        read1500 = m_reader.getRead1500ForPhotoshopEPSWithTIFFPreview(m_path, m_alerts);
    }
    const QString actualNow = m_record.value(kLinkActualResKey).toString();
    if (actualNow.isEmpty() || actualNow == kLinkNotKnown) {
        const auto pixels = numberAfterLast(read1500, QLatin1String("%ImageData: "), 0);
        const auto points = numberAfterLast(read1500, QLatin1String("%%HiResBoundingBox: "), 2);
        if (pixels && points && *points > 0.0) {
            const double actual = *pixels / (*points / 72.0);
            app::logLine(QStringLiteral("actRes eps: %1").arg(actual));
            m_record.insert(kLinkActualResKey, app::formatNoDecimal(actual));
            setEffectiveResolutionFromActual(actual);
        }
    }

    const QString color = m_record.value(kLinkColorKey).toString();
    const bool jpegEncoded = read1500.contains(QLatin1String(" 8 4 0 1 "));
    QString count;
    QString list;
    if (color == QLatin1String("CMYK") || color == QLatin1String("RGB")) {
        if (jpegEncoded)
            m_record.insert(kLinkKindKey, kLinkKindEPSJPEG);
    } else if (color == QLatin1String("CMYK + Spot")) {
        m_record.insert(kLinkKindKey, jpegEncoded ? kLinkKindEPSDCSJPEG : kLinkKindEPSDCS);
        if (const auto facts = m_reader.readEPS1500AtPath(m_path, read1500, m_alerts)) {
            count = facts->colorCount.toString();
            list = facts->colorList.toString();
        } else {
            app::logLine(QStringLiteral("-> error getting raster EPS colors"));
            count = QStringLiteral("?");
            list = kLinkNotKnown;
        }
    } else if (color == kLinkColorUnknown) {
        const qsizetype inks = read1500.indexOf(QLatin1String("DuotoneInks"));
        const qsizetype imageData = read1500.indexOf(QLatin1String("ImageData"));
        if (inks >= 0) {
            app::logLine(QStringLiteral(">> DuotoneInks"));
            const qsizetype from = inks + 14;
            const qsizetype to = imageData - 3;
            if (imageData >= 0 && to >= from) {
                const QString inkText = read1500.mid(from, to - from);
                const qsizetype inkCount = inkText.split(u'\r').size();
                m_record.insert(kLinkColorKey, duotoneName(inkCount));
                count = QString::number(inkCount);
                list = withoutPieces(inkText, {"%%+ (", ")"});
            }
        } else if (read1500.contains(QLatin1String("%%DocumentProcessColors: Black"))) {
            m_record.insert(kLinkColorKey, kLinkColorBlackAndWhite);
        }
    } else if (color.contains(QLatin1String(" Inks")) || color.contains(QLatin1String("Unknown"))) {
        app::logLine(QStringLiteral("dcs cols"));
        if (read1500.contains(QLatin1String("CustomColors: ("))) {
            if (const auto colors = customColorsInText(read1500, false)) {
                count = colors->count;
                list = colors->list;
            }
            m_record.insert(kLinkKindKey, kLinkKindEPSDCS);
            if (color.contains(QLatin1String("Unknown")))
                m_record.insert(kLinkColorKey, QStringLiteral("Multichannel"));
        }
    }
    m_record.insert(kLinkEpsColsKey, count);
    m_record.insert(kLinkEpsColListKey, list);
}

bool LinkMetadata::vectorEPSColorsAndFonts(const QString& read1500)
{
    app::logLine(QStringLiteral("> vectorEPSColorsAndFonts"));
    const auto facts = m_reader.readEPS1500AtPath(m_path, read1500, m_alerts);
    if (!facts)
        return true;
    m_record.insert(kLinkEpsColsKey, facts->colorCount);
    m_record.insert(kLinkEpsColListKey, facts->colorList);
    m_record.insert(kLinkEpsFontsKey, facts->fontCount);
    m_record.insert(kLinkEpsFontListKey, facts->fontList);
    return true;
}

} // namespace quillon::links
