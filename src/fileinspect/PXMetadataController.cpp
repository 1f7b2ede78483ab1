#include "fileinspect/PXMetadataController.h"

#include "app/Log.h"
#include "app/Numbers.h"
#include "app/Records.h"
#include "app/Settings.h"
#include "fileinspect/PXEXIFData.h"
#include "fileinspect/PdfPages.h"

#include <QLocale>

namespace quillon::fileinspect {

using app::logLine;
using namespace metadatakeys;

namespace {

const app::SettingKey kMeasurementUnits{"measurementUnits", QVariant()};

QVariantMap row(const QString& tag, const QVariant& value)
{
    return {{kTag, tag}, {kValue, value}};
}

QVariantMap headerRow(const QString& section)
{
    return row(section, QStringLiteral(" "));
}

// The tag's value as a whole number, when it is a number.
std::optional<qlonglong> codeOf(const PropertyDictionary& tags, const QString& key)
{
    const QVariant value = tags.value(key);
    if (!app::isNumberValue(value))
        return std::nullopt;
    return value.toLongLong();
}

// Adds the row of a tag whose value picks a name from `names` by index (255 reads "Other" when
// `other` is set) and removes the tag. A value beyond the list leaves the tag in place.
void addIndexed(QVariantList& rows, PropertyDictionary& tags, const QString& key, const QString& name,
                const QStringList& names, bool other = false)
{
    const std::optional<qlonglong> code = codeOf(tags, key);
    if (!code)
        return;
    QString text;
    if (*code >= 0 && *code < names.size())
        text = names[*code];
    else if (other && *code == 255)
        text = QStringLiteral("Other");
    else
        return;
    rows << row(name, text);
    tags.remove(key);
}

// Adds the row of a tag shown with a unit ("%@ sec") and removes the tag.
void addWithFormat(QVariantList& rows, PropertyDictionary& tags, const QString& key, const QString& name,
                   const QString& format)
{
    if (!tags.contains(key))
        return;
    rows << row(name, format.arg(metadataValueText(tags.value(key))));
    tags.remove(key);
}

} // namespace

QString metadataValueText(const QVariant& value)
{
    if (value.typeId() == QMetaType::QVariantList) {
        QStringList parts;
        for (const QVariant& item : value.toList())
            parts << metadataValueText(item);
        return parts.join(QStringLiteral(", "));
    }
    if (value.typeId() == QMetaType::Double)
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return value.toString();
}

bool isMetadataHeaderRow(const QVariantMap& row)
{
    static const QStringList sections{QStringLiteral("EXIF"), QStringLiteral("TIFF"), QStringLiteral("IPTC"),
                                      QStringLiteral("GPS")};
    return row.value(kValue).toString() == u" " && sections.contains(row.value(kTag).toString());
}

PXMetadataController::PXMetadataController(const app::Settings* settings)
    : m_settings(settings), m_regExCapitals(QStringLiteral("[A-Z][a-z]*"))
{
    if (!m_regExCapitals.isValid())
        m_regExErr = m_regExCapitals.errorString();
}

const QMap<QString, QString>& PXMetadataController::exifTags()
{
    static const QMap<QString, QString> tags{
        {QStringLiteral("CompressedBitsPerPixel"), QStringLiteral("Compressed Bits Per Pixel")},
        {QStringLiteral("CustomRendered"), QStringLiteral("Custom Rendered")},
        {QStringLiteral("DateTimeDigitized"), QStringLiteral("Date Time Digitized")},
        {QStringLiteral("DateTimeOriginal"), QStringLiteral("Date Time Original")},
        {QStringLiteral("DigitalZoomRatio"), QStringLiteral("Digital Zoom Ratio")},
        {QStringLiteral("ExposureBiasValue"), QStringLiteral("Exposure Bias Value")},
        {QStringLiteral("FNumber"), QStringLiteral("F Number")},
        {QStringLiteral("MaxApertureValue"), QStringLiteral("Max Aperture Value")},
        {QStringLiteral("SubjectDistRange"), QStringLiteral("Subject Distance Range")},
        {QStringLiteral("ApertureValue"), QStringLiteral("Aperture Value")},
        {QStringLiteral("FocalPlaneXResolution"), QStringLiteral("Focal Plane X Resolution")},
        {QStringLiteral("FocalPlaneYResolution"), QStringLiteral("Focal Plane Y Resolution")},
        {QStringLiteral("FocalPlaneResolutionUnit"), QStringLiteral("Focal Plane Resolution Unit")},
        {QStringLiteral("ShutterSpeedValue"), QStringLiteral("Shutter Speed Value")},
        {QStringLiteral("ISOSpeedRatings"), QStringLiteral("ISO Speed Ratings")},
    };
    return tags;
}

const QMap<QString, QString>& PXMetadataController::iptcTags()
{
    static const QMap<QString, QString> tags{
        {QStringLiteral("Country/PrimaryLocationName"), QStringLiteral("Country")},
        {QStringLiteral("Province/State"), QStringLiteral("State/Province")},
        {QStringLiteral("SubLocation"), QStringLiteral("Location")},
        {QStringLiteral("ObjectAttributeReference"), QStringLiteral("Object Attribute Reference")},
        {QStringLiteral("ObjectName"), QStringLiteral("Object Name")},
        {QStringLiteral("EditStatus"), QStringLiteral("Edit Status")},
        {QStringLiteral("EditorialUpdate"), QStringLiteral("Editorial Update")},
        {QStringLiteral("SubjectReference"), QStringLiteral("Subject Reference")},
        {QStringLiteral("SupplementalCategory"), QStringLiteral("Supplemental Category")},
        {QStringLiteral("FixtureIdentifier"), QStringLiteral("Fixture Identifier")},
        {QStringLiteral("ContentLocationCode"), QStringLiteral("Content Location Code")},
        {QStringLiteral("ContentLocationName"), QStringLiteral("Content Location Name")},
        {QStringLiteral("ReleaseDate"), QStringLiteral("Release Date")},
        {QStringLiteral("ReleaseTime"), QStringLiteral("Release Time")},
        {QStringLiteral("ExpirationDate"), QStringLiteral("Expiration Date")},
        {QStringLiteral("ExpirationTime"), QStringLiteral("Expiration Time")},
        {QStringLiteral("SpecialInstructions"), QStringLiteral("Special Instructions")},
        {QStringLiteral("ActionAdvised"), QStringLiteral("Action Advised")},
        {QStringLiteral("ReferenceService"), QStringLiteral("Reference Service")},
        {QStringLiteral("ReferenceDate"), QStringLiteral("Reference Date")},
        {QStringLiteral("ReferenceNumber"), QStringLiteral("Reference Number")},
        {QStringLiteral("DateCreated"), QStringLiteral("Date Created")},
        {QStringLiteral("TimeCreated"), QStringLiteral("Time Created")},
        {QStringLiteral("DigitalCreationDate"), QStringLiteral("Digital Creation Date")},
        {QStringLiteral("DigitalCreationTime"), QStringLiteral("Digital Creation Time")},
        {QStringLiteral("OriginatingProgram"), QStringLiteral("Originating Program")},
        {QStringLiteral("ProgramVersion"), QStringLiteral("Program Version")},
        {QStringLiteral("ObjectCycle"), QStringLiteral("Object Cycle")},
        {QStringLiteral("BylineTitle"), QStringLiteral("Byline Title")},
        {QStringLiteral("Country/PrimaryLocationCode"), QStringLiteral("Country Code")},
        {QStringLiteral("OriginalTransmissionReference"), QStringLiteral("Original Transmission Reference")},
        {QStringLiteral("CopyrightNotice"), QStringLiteral("Copyright Notice")},
        {QStringLiteral("CaptionAbstract"), QStringLiteral("Caption Abstract")},
        {QStringLiteral("ImageType"), QStringLiteral("Image Type")},
        {QStringLiteral("ImageOrientation"), QStringLiteral("Image Orientation")},
        {QStringLiteral("LanguageIdentifier"), QStringLiteral("Language Identifier")},
        {QStringLiteral("StarRating"), QStringLiteral("Star Rating")},
    };
    return tags;
}

QVariantList PXMetadataController::readFromURL(const QString& path, const QString& type, app::Error* error)
{
    logLine(QStringLiteral("> readFromURL: %1 %2").arg(path, type));
    const app::Result<ImageMetadata> metadata = readImageMetadata(path);
    if (metadata.ok())
        logLine(QStringLiteral("CGImageSourceRef created"));
    else
        logLine(QStringLiteral("-> can't read metadata: %1").arg(metadata.error().text()));
    m_metadata = metadata.ok() ? metadata.value() : ImageMetadata();
    const QVariantList rows = rowsFromMetadata(m_metadata);
    if (error)
        *error =
            app::makeError(QStringLiteral("The file couldn't be opened because it isn't in the correct format."), path);
    return rows;
}

QVariantList PXMetadataController::rowsFromMetadata(const ImageMetadata& metadata)
{
    if (metadata.isEmpty()) {
        logLine(QStringLiteral("(mMetadata == nil or empty)"));
        return {};
    }
    QVariantList rows;
    if (metadata.exif) {
        rows += exifArr(*metadata.exif);
        rows += exifArray(*metadata.exif);
    }
    if (metadata.exif && metadata.tiff)
        rows += tiffArr(*metadata.tiff);
    if (metadata.iptc)
        rows += iptcArr(*metadata.iptc);
    if (metadata.gps)
        rows += gpsArr(*metadata.gps);
    return rows;
}

QVariantList PXMetadataController::exifArr(const PropertyDictionary& exif)
{
    PropertyDictionary tags = exif;
    tags.remove(QStringLiteral("PixelXDimension"));
    tags.remove(QStringLiteral("PixelYDimension"));
    for (const QString& decodedKey : PXEXIFData::EXIFTags().keys())
        tags.remove(decodedKey);
    QVariantList rows{headerRow(QStringLiteral("EXIF"))};

    if (const std::optional<qlonglong> space = codeOf(tags, QStringLiteral("ColorSpace"))) {
        static const QMap<qlonglong, QString> spaces{{1, QStringLiteral("sRGB")},
                                                     {2, QStringLiteral("Adobe RGB")},
                                                     {65535, QStringLiteral("Uncalibrated")},
                                                     {-1, QStringLiteral("RGB")}};
        rows << row(QStringLiteral("Color Space"), spaces.value(*space, QString::number(*space)));
        tags.remove(QStringLiteral("ColorSpace"));
    }
    if (const std::optional<qlonglong> mode = codeOf(tags, QStringLiteral("ExposureMode")); mode && *mode >= 0) {
        static const QStringList modes{QStringLiteral("Auto"), QStringLiteral("Manual"),
                                       QStringLiteral("Auto bracket")};
        rows << row(QStringLiteral("Exposure Mode"), modes.value(*mode, QString::number(*mode)));
        tags.remove(QStringLiteral("ExposureMode"));
    }
    addIndexed(rows, tags, QStringLiteral("ExposureProgram"), QStringLiteral("Exposure Program"),
               {QStringLiteral("Not Defined"), QStringLiteral("Manual"), QStringLiteral("Program AE"),
                QStringLiteral("Aperture-priority AE"), QStringLiteral("Shutter speed priority AE"),
                QStringLiteral("Creative (Slow speed)"), QStringLiteral("Action (High speed)"),
                QStringLiteral("Portrait"), QStringLiteral("Landscape")});
    const QStringList normalLowHigh{QStringLiteral("Normal"), QStringLiteral("Low"), QStringLiteral("High")};
    addIndexed(rows, tags, QStringLiteral("Contrast"), QStringLiteral("Contrast"), normalLowHigh);
    addIndexed(rows, tags, QStringLiteral("Saturation"), QStringLiteral("Saturation"), normalLowHigh);
    // The value indexes the list itself, so 0 reads "Daylight"; kept as the viewer always showed it.
    addIndexed(rows, tags, QStringLiteral("LightSource"), QStringLiteral("Light Source"),
               {QStringLiteral("Daylight"), QStringLiteral("Fluorescent"), QStringLiteral("Tungsten"),
                QStringLiteral("Flash"), QStringLiteral("Fine Weather"), QStringLiteral("Cloudy"),
                QStringLiteral("Shade"), QStringLiteral("Daylight Fluorescent"),
                QStringLiteral("Day White Fluorescent"), QStringLiteral("Cool White Fluorescent"),
                QStringLiteral("White Fluorescent"), QStringLiteral("Standard Light A"),
                QStringLiteral("Standard Light B"), QStringLiteral("Standard Light C"), QStringLiteral("D55"),
                QStringLiteral("D65"), QStringLiteral("D75"), QStringLiteral("D50"),
                QStringLiteral("ISO Studio Tungsten")},
               true);
    addIndexed(rows, tags, QStringLiteral("MeteringMode"), QStringLiteral("Metering Mode"),
               {QStringLiteral("Average"), QStringLiteral("Center-wei"), QStringLiteral("Spot"),
                QStringLiteral("Multi-spot"), QStringLiteral("Multi-segm"), QStringLiteral("Partial")},
               true);
    addIndexed(rows, tags, QStringLiteral("GainControl"), QStringLiteral("Gain Control"),
               {QStringLiteral("None"), QStringLiteral("Low gain up"), QStringLiteral("High gain up"),
                QStringLiteral("Low gain down"), QStringLiteral("High gain down")});
    addIndexed(
        rows, tags, QStringLiteral("SceneCaptureType"), QStringLiteral("Scene Capture Type"),
        {QStringLiteral("Standard"), QStringLiteral("Landscape"), QStringLiteral("Portrait"), QStringLiteral("Night")});
    addIndexed(rows, tags, QStringLiteral("Sharpness"), QStringLiteral("Sharpness"),
               {QStringLiteral("Normal"), QStringLiteral("Soft"), QStringLiteral("Hard")});
    if (const std::optional<qlonglong> balance = codeOf(tags, QStringLiteral("WhiteBalance"))) {
        static const QStringList balances{QStringLiteral("Auto"), QStringLiteral("Manual")};
        rows << row(QStringLiteral("White Balance"),
                    *balance >= 0 && *balance < 2 ? balances[*balance] : QString::number(*balance));
        tags.remove(QStringLiteral("WhiteBalance"));
    }
    addWithFormat(rows, tags, QStringLiteral("ExposureTime"), QStringLiteral("Exposure Time"),
                  QStringLiteral("%1 sec"));
    addWithFormat(rows, tags, QStringLiteral("FocalLenIn35mmFilm"), QStringLiteral("Focal Length in 35mm Film"),
                  QStringLiteral("%1 mm"));
    addWithFormat(rows, tags, QStringLiteral("FocalLength"), QStringLiteral("Focal Length"), QStringLiteral("%1 mm"));

    for (const auto& [key, value] : tags.entries())
        rows << row(exifTags().value(key, splitByUppercaseLetters(key)), value);
    return rows;
}

QVariantList PXMetadataController::exifArray(const PropertyDictionary& exif)
{
    logLine(QStringLiteral("--> exifArray"));
    QVariantList rows;
    for (const auto& [key, value] : exif.entries()) {
        if (PXEXIFData::EXIFTags().value(key) != u"selector")
            continue;
        if (const std::optional<QVariantMap> decoded = PXEXIFData::decode(key, value)) {
            logLine(QStringLiteral("tagNameAndValue %1").arg(decoded->value(exifkeys::kParsedValue).toString()));
            rows << row(decoded->value(exifkeys::kTagName).toString(), decoded->value(exifkeys::kParsedValue));
        }
    }
    return rows;
}

QVariantList PXMetadataController::tiffArr(const PropertyDictionary& tiff)
{
    QVariantList rows{headerRow(QStringLiteral("TIFF"))};
    for (const QString& key : {QStringLiteral("Make"), QStringLiteral("Model"), QStringLiteral("Software")})
        if (tiff.contains(key))
            rows << row(key, tiff.value(key));
    if (tiff.contains(QStringLiteral("Orientation")))
        if (const std::optional<QVariantMap> decoded =
                PXEXIFData::Orientation(tiff.value(QStringLiteral("Orientation"))))
            rows << row(decoded->value(exifkeys::kTagName).toString(), decoded->value(exifkeys::kParsedValue));
    return rows;
}

QVariantList PXMetadataController::iptcArr(const PropertyDictionary& iptc)
{
    QVariantList rows{headerRow(QStringLiteral("IPTC"))};
    for (const auto& [key, value] : iptc.entries())
        rows << row(iptcTags().value(key, key), value);
    return rows;
}

QVariantList PXMetadataController::gpsArr(const PropertyDictionary& gps)
{
    QVariantList rows{headerRow(QStringLiteral("GPS"))};
    PropertyDictionary rest = gps;
    rest.remove(QStringLiteral("GPSVersion"));
    const QString latitude = QStringLiteral("Latitude"), latitudeRef = QStringLiteral("LatitudeRef");
    const QString longitude = QStringLiteral("Longitude"), longitudeRef = QStringLiteral("LongitudeRef");
    if (gps.contains(latitude) && gps.contains(longitude) && gps.contains(latitudeRef) && gps.contains(longitudeRef)) {
        const QString latitudeText = metadataValueText(gps.value(latitude)).left(8);
        const QString longitudeFull = metadataValueText(gps.value(longitude));
        // The longitude is cut to the latitude's length, unless it is shorter than 8 already.
        const QString longitudeText =
            longitudeFull.size() < 8 ? longitudeFull : longitudeFull.left(latitudeText.size());
        rows << row(QStringLiteral("Latitude"),
                    QStringLiteral("%1 %2").arg(latitudeText, metadataValueText(gps.value(latitudeRef))));
        rows << row(QStringLiteral("Longtitude"),
                    QStringLiteral("%1 %2").arg(longitudeText, metadataValueText(gps.value(longitudeRef))));
        for (const QString& key : {latitude, latitudeRef, longitude, longitudeRef})
            rest.remove(key);
    }
    const QString altitude = QStringLiteral("Altitude"), altitudeRef = QStringLiteral("AltitudeRef");
    if (gps.contains(altitude) && gps.contains(altitudeRef)) {
        const bool below = gps.value(altitudeRef).toLongLong() != 0;
        rows << row(QStringLiteral("Altitude"), QStringLiteral("%1%2 m").arg(below ? QStringLiteral("-") : QString(),
                                                                             metadataValueText(gps.value(altitude))));
        rest.remove(altitude);
        rest.remove(altitudeRef);
    }
    if (gps.contains(QStringLiteral("MapDatum"))) {
        rows << row(QStringLiteral("Map Datum"), gps.value(QStringLiteral("MapDatum")));
        rest.remove(QStringLiteral("MapDatum"));
    }
    for (const auto& [key, value] : rest.entries())
        rows << row(key, value);
    return rows;
}

QString PXMetadataController::splitByUppercaseLetters(const QString& key)
{
    logLine(QStringLiteral("> splitByUppercaseLetters: %1").arg(key));
    QStringList words;
    for (QRegularExpressionMatchIterator it = m_regExCapitals.globalMatch(key); it.hasNext();)
        words << it.next().captured();
    if (words.isEmpty())
        return key;
    const auto singles = std::count_if(words.begin(), words.end(), [](const QString& w) { return w.size() == 1; });
    if (singles < 2)
        return words.join(u' ');
    // Runs of single capitals (an abbreviation) stay together; every other word is followed by
    // a blank, the last one included.
    QString rebuilt;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString next = i + 1 < words.size() ? words[i + 1] : QString();
        if (words[i].size() == 1 && next.size() < 2)
            rebuilt += words[i];
        else
            rebuilt += words[i] + u' ';
    }
    return rebuilt.isEmpty() ? words.join(u' ') : rebuilt;
}

void PXMetadataController::setMetadataForFile(const QString& path, const QVariantList& rows)
{
    logLine(QStringLiteral("-> setMetadataForFile: %1").arg(rows.size()));
    m_table.setRows(!path.isEmpty() && !rows.isEmpty() ? rows : QVariantList());
}

QStringList PXMetadataController::pdfDimensionsAtPath(const QString& path)
{
    const auto size = firstPageSize(path);
    if (!size.ok() || !size.value())
        return {QStringLiteral("0"), QStringLiteral("0")};
    return {app::formatOneDecimal(size.value()->width), app::formatOneDecimal(size.value()->height)};
}

QStringList PXMetadataController::printDimensionsFromInchValues(double widthInches, double heightInches)
{
    logLine(QStringLiteral("> printDimensionsFromInchValues: %1 x %2").arg(widthInches).arg(heightInches));
    const QString unit = measurementUnits();
    QStringList dimensions;
    if (unit == u"mm")
        dimensions = {app::formatNoDecimal(widthInches * 25.4), app::formatNoDecimal(heightInches * 25.4)};
    else if (unit == u"cm")
        dimensions = {app::formatTwoDecimals(widthInches * 2.54), app::formatTwoDecimals(heightInches * 2.54)};
    else
        dimensions = {app::formatTwoDecimals(widthInches), app::formatTwoDecimals(heightInches)};
    logLine(QStringLiteral("finalDimensions: %1").arg(dimensions.join(QStringLiteral(", "))));
    return dimensions;
}

QString PXMetadataController::measurementUnits() const
{
    const QString name = QString::fromLatin1(kMeasurementUnits.name);
    const app::Settings userDefaults;
    const app::Settings& settings = m_settings ? *m_settings : userDefaults;
    if (settings.contains(name)) {
        const QString unit = settings.value(kMeasurementUnits).toString();
        return unit == u"mm" || unit == u"cm" ? unit : QStringLiteral("in");
    }
    return QLocale().measurementSystem() == QLocale::MetricSystem ? QStringLiteral("mm") : QStringLiteral("in");
}

} // namespace quillon::fileinspect
