#include "fileinspect/IccProfile.h"
#include "fileinspect/ImageSource.h"
#include "fileinspect/QNPreflightMethods.h"

#include "Fixtures.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::fileinspect;
using quillon::test::be16;
using quillon::test::be32;
using quillon::test::readAll;
using quillon::test::samplePath;

namespace {

const QString kNikonProfile = u"Nikon Adobe RGB 4.0.0.3000"_s;

// The sample PNG with an iCCP chunk holding `compressed` put right after its header chunk.
QByteArray pngWithProfileChunk(const QByteArray& compressed)
{
    const QByteArray png = readAll(samplePath("other/PNG.png"));
    const QByteArray data = QByteArray("Nikon", 6) + '\0' + compressed;
    const QByteArray chunk = be32(quint32(data.size())) + "iCCP" + data + be32(0);
    return png.left(33) + chunk + png.mid(33);
}

// A zlib stream of the bytes (qCompress puts a 4-byte length before it).
QByteArray zlib(const QByteArray& bytes)
{
    return qCompress(bytes).mid(4);
}

QByteArray jpegSegment(quint8 marker, const QByteArray& data)
{
    return QByteArray(1, '\xFF') + char(marker) + be16(quint16(data.size() + 2)) + data;
}

} // namespace

TEST(ImageProperties, TiffCompressionAndProfile)
{
    struct Expected {
        const char* file;
        const char* profile;
        std::optional<QString> compression;
    };
    const QList<Expected> files{
        {"tiff/ExifTool.tif", "sRGB IEC61966-2.1", u"LZW"_s},
        {"tiff/tiff_adobe_deflate.tif", "sRGB IEC61966-2.1", u"ZIP"_s},
        {"tiff/hopper_jpg.tif", "", u"JPEG"_s},
        {"tiff/hopper.tif", "", QString()},       // uncompressed: the empty name
        {"tiff/copyleft.tiff", "", std::nullopt}, // PackBits is outside the table
        {"tiff/hopper_lzma.tif", "", std::nullopt},
    };
    for (const Expected& expected : files) {
        QNPreflightMethods reader;
        quillon::app::Error error;
        EXPECT_FALSE(reader.readFromURL(samplePath(QString::fromLatin1(expected.file)), u"tif"_s, &error));
        EXPECT_EQ(reader.profName(), QString::fromLatin1(expected.profile)) << expected.file;
        EXPECT_EQ(reader.tiffCompr(), expected.compression) << expected.file;
        EXPECT_TRUE(error.file.endsWith(QString::fromLatin1(expected.file)));
    }
    // The compression is only taken for a type naming TIFF; the profile always.
    QNPreflightMethods reader;
    reader.readFromURL(samplePath("tiff/ExifTool.tif"), u"TIF"_s);
    EXPECT_EQ(reader.tiffCompr(), std::nullopt);
    EXPECT_EQ(reader.profName(), u"sRGB IEC61966-2.1");
}

TEST(ImageProperties, JpegAndPngProfiles)
{
    QNPreflightMethods reader;
    reader.readFromURL(samplePath("jpeg/ExifTool.jpg"), u"jpg"_s);
    EXPECT_EQ(reader.profName(), u"Adobe RGB (1998)");
    // Reading a file without a profile clears the name of the last one.
    reader.readFromURL(samplePath("jpeg/noExif.jpg"), u"jpg"_s);
    EXPECT_EQ(reader.profName(), u"");
    reader.readFromURL(samplePath("other/PNG.png"), u"png"_s);
    EXPECT_EQ(reader.profName(), u"");

    const QByteArray profile = readAll(samplePath("other/ICC_Profile.icc"));
    reader.readFromURL(ByteSource::fromBytes(pngWithProfileChunk(zlib(profile))), u"png"_s);
    EXPECT_EQ(reader.profName(), kNikonProfile);
    reader.readFromURL(ByteSource::fromBytes(pngWithProfileChunk(zlib(profile).left(100))), u"png"_s);
    EXPECT_EQ(reader.profName(), u"");
}

TEST(ImageProperties, JpegProfileInPiecesIsJoinedInSequence)
{
    const QByteArray profile = readAll(samplePath("other/ICC_Profile.icc"));
    const QByteArray marker("ICC_PROFILE\0", 12);
    const QByteArray sof = QByteArray(1, 8) + be16(20) + be16(30) + char(4) + QByteArray(12, '\x11');
    const QByteArray jpeg = QByteArray("\xFF\xD8", 2) + jpegSegment(0xE0, "JFIF\0...") +
                            jpegSegment(0xE2, marker + char(2) + char(2) + profile.mid(200)) +
                            jpegSegment(0xE2, marker + char(1) + char(2) + profile.left(200)) + jpegSegment(0xC0, sof) +
                            jpegSegment(0xDA, QByteArray(10, '\0'));
    const std::optional<ImageProperties> properties = readImageProperties(ByteSource::fromBytes(jpeg));
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->format, u"JPEG");
    EXPECT_EQ(properties->iccProfile, profile);
    EXPECT_EQ(properties->profileName, kNikonProfile);
    EXPECT_EQ(properties->pixelWidth, 30);
    EXPECT_EQ(properties->pixelHeight, 20);
    EXPECT_EQ(properties->colorMode, u"CMYK");
}

TEST(ImageProperties, SizesAndColourModes)
{
    struct Expected {
        const char* file;
        const char* format;
        int width;
        int height;
        const char* mode;
    };
    const QList<Expected> files{
        {"tiff/ExifTool.tif", "TIFF", 160, 120, "RGB"}, // big-endian
        {"tiff/GeoTiff.tif", "TIFF", 25, 24, "Indexed"},
        {"tiff/hopper_g4.tif", "TIFF", 128, 128, "Black and White"},
        {"tiff/lab.tif", "TIFF", 10, 10, "Lab"},
        {"tiff/tiff_strip_cmyk_jpeg.tif", "TIFF", 100, 100, "CMYK"},
        {"jpeg/pil_sample_cmyk.jpg", "JPEG", 100, 100, "CMYK"},
        {"idml/sets/simpleidml/tests/regressiontests/IDML/media/Jacques-Yves_Cousteau.jpg", "JPEG", 249, 304,
         "Grayscale"},
        {"other/PNG.png", "PNG", 16, 16, "Black and White"},
        {"psd/cmyk-spot.psd", "Photoshop", 640, 637, "CMYK"},
        {"psd/1layer.psb", "Photoshop", 101, 55, "RGB"},
    };
    for (const Expected& expected : files) {
        const auto properties =
            readImageProperties(ByteSource::openFile(samplePath(QString::fromLatin1(expected.file))));
        ASSERT_TRUE(properties) << expected.file;
        EXPECT_EQ(properties->format, QString::fromLatin1(expected.format)) << expected.file;
        EXPECT_EQ(properties->pixelWidth, expected.width) << expected.file;
        EXPECT_EQ(properties->pixelHeight, expected.height) << expected.file;
        EXPECT_EQ(properties->colorMode, QString::fromLatin1(expected.mode)) << expected.file;
    }
    EXPECT_FALSE(readImageProperties(ByteSource::openFile(samplePath("eps/PostScript.eps"))));
    EXPECT_FALSE(readImageProperties(ByteSource::fromBytes(QByteArray("II*\0\0\0\0\0", 8))));
    EXPECT_FALSE(readImageProperties(ByteSource()));
}

TEST(ImageProperties, OtherFormatsThroughTheMetadataLibrary)
{
    const QByteArray webp = quillon::test::webpWithProfile(readAll(samplePath("other/ICC_Profile.icc")));
    const auto properties = readImageProperties(ByteSource::fromBytes(webp));
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->format, u"WEBP");
    EXPECT_EQ(properties->pixelWidth, 5);
    EXPECT_EQ(properties->pixelHeight, 3);
    EXPECT_EQ(properties->profileName, kNikonProfile);

    // PostScript is never handed to the library, which would read it whole.
    EXPECT_FALSE(readImageProperties(ByteSource::fromBytes("%!PS-Adobe-3.0\n%%BoundingBox: 0 0 1 1\n")));
}

TEST(ImageProperties, ProfileDescriptions)
{
    EXPECT_EQ(iccProfileDescription(readAll(samplePath("other/ICC_Profile.icc"))), kNikonProfile);
    EXPECT_EQ(iccProfileDescription(QByteArray(500, 'x')), u"");
    EXPECT_EQ(iccProfileDescription(readAll(samplePath("other/ICC_Profile.icc")).left(200)), u"");
}
