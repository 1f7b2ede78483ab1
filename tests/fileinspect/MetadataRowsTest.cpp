#include "fileinspect/PXEXIFData.h"
#include "fileinspect/PXMetadataController.h"

#include "Fixtures.h"
#include "app/Settings.h"
#include "support/TestSupport.h"

#include <QLocale>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::fileinspect;
using quillon::test::samplePath;

namespace {

PropertyDictionary dictionary(std::initializer_list<std::pair<const char*, QVariant>> entries)
{
    PropertyDictionary tags;
    for (const auto& [key, value] : entries)
        tags.insert(QString::fromLatin1(key), value);
    return tags;
}

// "tag: value" of each row, values as shown.
QStringList shown(const QVariantList& rows)
{
    QStringList lines;
    for (const QVariant& row : rows)
        lines << row.toMap().value(metadatakeys::kTag).toString() + u": "_s +
                     metadataValueText(row.toMap().value(metadatakeys::kValue));
    return lines;
}

QStringList rowsOf(const char* sample)
{
    PXMetadataController controller;
    return shown(controller.readFromURL(samplePath(QString::fromLatin1(sample))));
}

} // namespace

TEST(MetadataRows, NamesSplitAtCapitals)
{
    PXMetadataController controller;
    EXPECT_EQ(controller.splitByUppercaseLetters(u"BrightnessValue"_s), u"Brightness Value");
    // Two or more single capitals: rebuilt, abbreviations kept together, a trailing blank left.
    EXPECT_EQ(controller.splitByUppercaseLetters(u"ISOSpeedRatings"_s), u"ISO Speed Ratings ");
    EXPECT_EQ(controller.splitByUppercaseLetters(u"ImageUniqueID"_s), u"Image Unique ID");
    // Digits and other characters are dropped; no capital leaves the key as it is.
    EXPECT_EQ(controller.splitByUppercaseLetters(u"Exif2Version"_s), u"Exif Version");
    EXPECT_EQ(controller.splitByUppercaseLetters(u"gamma"_s), u"gamma");
}

TEST(MetadataRows, ExifTablesAndRemainingTags)
{
    PXMetadataController controller;
    const PropertyDictionary exif = dictionary({
        {"PixelXDimension", 640},
        {"ExposureProgram", 12}, // beyond its list: stays for the remaining rows
        {"BrightnessValue", 2.5},
        {"LightSource", 1},
        {"Flash", 24}, // decoded elsewhere
        {"ColorSpace", 65535},
        {"ExposureTime", 0.004},
        {"FocalLength", 5.8},
        {"ISOSpeedRatings", QVariantList{100, 200}},
    });
    EXPECT_EQ(shown(controller.exifArr(exif)),
              QStringList({"EXIF:  ", "Color Space: Uncalibrated", "Light Source: Fluorescent",
                           "Exposure Time: 0.004 sec", "Focal Length: 5.8 mm", "Exposure Program: 12",
                           "Brightness Value: 2.5", "ISO Speed Ratings: 100, 200"}));
    // The light source value indexes the list from 0.
    EXPECT_EQ(shown(controller.exifArr(dictionary({{"LightSource", 0}}))).value(1), u"Light Source: Daylight");
    EXPECT_EQ(shown(controller.exifArr(dictionary({{"LightSource", 19}}))).value(1), u"Light Source: 19");
    EXPECT_EQ(shown(controller.exifArr(dictionary({{"ColorSpace", -1}, {"FocalLenIn35mmFilm", 28}}))),
              QStringList({"EXIF:  ", "Color Space: RGB", "Focal Length in 35mm Film: 28 mm"}));
}

TEST(MetadataRows, DecodedExifTags)
{
    PXMetadataController controller;
    const PropertyDictionary exif = dictionary({{"Flash", 24},
                                                {"ExposureTime", 0.5},
                                                {"ComponentsConfiguration", QVariantList{1, 2, 3, 0}},
                                                {"SensingMethod", 2},
                                                {"InteropIndex", u"R98"_s}});
    EXPECT_EQ(shown(controller.exifArray(exif)),
              QStringList({"Flash: Auto, Did not fire", "Components Configuration: Y, Cb, Cr, -",
                           "Sensing Method: One-chip color area sensor",
                           "Interoperability Index: R98 - DCF basic file (sRGB)"}));

    EXPECT_EQ(PXEXIFData::Flash(0x41)->value(exifkeys::kParsedValue).toString(), u"Fired, Red-eye reduction");
    EXPECT_EQ(PXEXIFData::Flash(0x1f)->value(exifkeys::kParsedValue).toString(), u"Auto, Fired, Return detected");
    EXPECT_EQ(PXEXIFData::Orientation(8)->value(exifkeys::kParsedValue).toString(), u"Rotate 270 CW");
    // An unknown code shows as its number; a value that is no code gives nothing.
    EXPECT_EQ(PXEXIFData::Orientation(42)->value(exifkeys::kParsedValue).toString(), u"42");
    EXPECT_FALSE(PXEXIFData::Orientation(u"left"_s));
    EXPECT_FALSE(PXEXIFData::decode(u"ColorSpace"_s, 1));
}

TEST(MetadataRows, GpsRowsCutTheCoordinates)
{
    PXMetadataController controller;
    EXPECT_EQ(shown(controller.gpsArr(dictionary({{"GPSVersion", QVariantList{2, 2, 0, 0}},
                                                  {"LatitudeRef", u"N"_s},
                                                  {"Latitude", 48.85837},
                                                  {"LongitudeRef", u"E"_s},
                                                  {"Longitude", 2.29448},
                                                  {"AltitudeRef", 1},
                                                  {"Altitude", 42.8},
                                                  {"MapDatum", u"WGS-84"_s},
                                                  {"Speed", 0}}))),
              QStringList({"GPS:  ", "Latitude: 48.85837 N", "Longtitude: 2.29448 E", "Altitude: -42.8 m",
                           "Map Datum: WGS-84", "Speed: 0"}));
    // A short latitude sets the cut of a long longitude.
    EXPECT_EQ(
        shown(controller.gpsArr(dictionary(
                  {{"Latitude", 5.5}, {"LatitudeRef", u"S"_s}, {"Longitude", 123.456789}, {"LongitudeRef", u"W"_s}})))
            .value(2),
        u"Longtitude: 123 W");
    // Without the references the coordinates are plain rows.
    EXPECT_EQ(shown(controller.gpsArr(dictionary({{"Latitude", 5.5}, {"Longitude", 1.25}}))),
              QStringList({"GPS:  ", "Latitude: 5.5", "Longitude: 1.25"}));
}

TEST(MetadataRows, SectionsFollowTheViewersRules)
{
    PXMetadataController controller;
    ImageMetadata metadata;
    metadata.tiff = dictionary({{"Make", u"Canon"_s}, {"Orientation", 6}, {"XResolution", 72}});
    metadata.iptc = dictionary({{"ObjectName", u"Title"_s}, {"Keywords", QVariantList{"a", "b"}}});
    // No EXIF: no TIFF section either.
    EXPECT_EQ(shown(controller.rowsFromMetadata(metadata)),
              QStringList({"IPTC:  ", "Object Name: Title", "Keywords: a, b"}));
    metadata.exif = dictionary({{"FNumber", 2.8}});
    metadata.gps = dictionary({{"MapDatum", u"WGS84"_s}});
    EXPECT_EQ(shown(controller.rowsFromMetadata(metadata)),
              QStringList({"EXIF:  ", "F Number: 2.8", "TIFF:  ", "Make: Canon", "Orientation: Rotate 90 CW",
                           "IPTC:  ", "Object Name: Title", "Keywords: a, b", "GPS:  ", "Map Datum: WGS84"}));
    EXPECT_TRUE(controller.rowsFromMetadata(ImageMetadata()).isEmpty());
    const QVariantMap header = controller.rowsFromMetadata(metadata).first().toMap();
    EXPECT_TRUE(isMetadataHeaderRow(header));
    EXPECT_EQ(header.value(metadatakeys::kValue).toString(), u" ");
}

TEST(MetadataRows, RealFiles)
{
    const QStringList gps = rowsOf("jpeg/GPS.jpg");
    EXPECT_TRUE(gps.contains(u"Latitude: 54.98966 N")) << gps.join(u'\n').toStdString();
    EXPECT_TRUE(gps.contains(u"Longtitude: 1.914166 W"));
    EXPECT_TRUE(gps.contains(u"Map Datum: WGS84"));

    // IPTC only: the first row is its header.
    const QStringList iptc = rowsOf("jpeg/IPTC.jpg");
    EXPECT_EQ(iptc.value(0), u"IPTC:  ");
    EXPECT_TRUE(iptc.contains(u"Byline: Phil Harvey"));
    EXPECT_TRUE(iptc.contains(u"Keywords: ExifTool, Test, IPTC"));

    EXPECT_TRUE(rowsOf("jpeg/windowsXpFields.jpg").contains(u"Light Source: Other"));
    EXPECT_TRUE(rowsOf("jpeg/windowsXpFields.jpg").contains(u"User Comment: I am a comment. Yey."));
    const QStringList pentax = rowsOf("jpeg/Pentax.jpg");
    EXPECT_TRUE(pentax.contains(u"Orientation: Rotate 270 CW"));

    // A TIFF without an EXIF directory shows its IPTC but no TIFF section.
    const QStringList tiff = rowsOf("tiff/ExifTool.tif");
    EXPECT_FALSE(tiff.contains(u"TIFF:  "));
    EXPECT_TRUE(tiff.contains(u"Keywords: exiftool, test, picture"));

    EXPECT_TRUE(rowsOf("jpeg/noExif.jpg").isEmpty());
    EXPECT_TRUE(rowsOf("other/PDF.pdf").isEmpty());
    EXPECT_TRUE(rowsOf("no such file.jpg").isEmpty());
    EXPECT_TRUE(rowsOf("jpeg").isEmpty());
}

TEST(MetadataRows, TableShowsRowsOnlyForAFile)
{
    PXMetadataController controller;
    const QVariantList rows = controller.readFromURL(samplePath("jpeg/Kodak.jpg"));
    controller.setMetadataForFile(samplePath("jpeg/Kodak.jpg"), rows);
    EXPECT_EQ(controller.metadataTable().rowCount(), rows.size());
    controller.setMetadataForFile(QString(), rows);
    EXPECT_EQ(controller.metadataTable().rowCount(), 0);
    controller.setMetadataForFile(samplePath("jpeg/Kodak.jpg"), {});
    EXPECT_EQ(controller.metadataTable().rowCount(), 0);
}

TEST(MetadataRows, PdfAndPrintSizes)
{
    quillon::test::TempFiles files;
    quillon::app::Settings settings(files.path(u"defaults.ini"_s));
    PXMetadataController controller(&settings);
    EXPECT_EQ(controller.pdfDimensionsAtPath(samplePath("other/PDF.pdf")), QStringList({"8", "8"}));
    EXPECT_EQ(controller.pdfDimensionsAtPath(samplePath("other/module1.pdf")), QStringList({"178.6", "164.4"}));
    EXPECT_EQ(controller.pdfDimensionsAtPath(samplePath("jpeg/Kodak.jpg")), QStringList({"0", "0"}));

    settings.setValue(u"measurementUnits"_s, u"mm"_s);
    EXPECT_EQ(controller.printDimensionsFromInchValues(8.5, 11), QStringList({"216", "279"}));
    settings.setValue(u"measurementUnits"_s, u"in"_s);
    EXPECT_EQ(controller.printDimensionsFromInchValues(8.504, 11.0), QStringList({"8.5", "11"}));
    settings.setValue(u"measurementUnits"_s, u"furlong"_s);
    EXPECT_EQ(controller.measurementUnits(), u"in");

    // Unset, the locale's measurement system decides.
    settings.remove(u"measurementUnits"_s);
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(controller.measurementUnits(), u"mm");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(controller.measurementUnits(), u"in");
    QLocale::setDefault(previous);
}
