// Every reader, given every prefix of a real file, returns a value or its fallback: never a crash,
// a hang or a read outside the bytes (the sanitizer build checks the last). The metadata and PDF
// libraries are left to the fuzz targets, which cut and damage every sample. The head of each file
// is cut byte by byte; beyond it the cuts are spread so that a sweep stays well under a second.
#include "fileinspect/ImageSource.h"
#include "fileinspect/QNPreflightMethods.h"

#include "support/TestSupport.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <functional>

using namespace quillon::fileinspect;
using quillon::test::readAll;
using quillon::test::samplePath;

namespace {

// Calls `check` with prefixes of `bytes`: every length up to `byteByByte`, then about
// `spreadCuts` more lengths spread over the rest, and the whole.
void forEachPrefix(const QByteArray& bytes, qsizetype byteByByte, qsizetype spreadCuts,
                   const std::function<void(const QByteArray&)>& check)
{
    ASSERT_FALSE(bytes.isEmpty());
    const qsizetype first = std::min(byteByByte, bytes.size());
    for (qsizetype length = 0; length < first; ++length)
        check(bytes.left(length));
    const qsizetype step = std::max<qsizetype>(1, (bytes.size() - first) / std::max<qsizetype>(spreadCuts, 1));
    for (qsizetype length = first; length < bytes.size(); length += step)
        check(bytes.left(length));
    check(bytes);
}

bool isCleanValue(const QVariant& value)
{
    static const QRegularExpression control(QStringLiteral("[\\x00-\\x08\\x0b\\x0c\\x0e-\\x1f]"));
    return !value.toString().contains(control);
}

} // namespace

TEST(TruncationSweep, PhotoshopReaders)
{
    for (const char* sample : {"psd/Photoshop.psd", "psd/4x4_8bit_duotone.psd", "psd/five_channels.psd"}) {
        const QByteArray bytes = readAll(samplePath(QString::fromLatin1(sample)));
        QNPreflightMethods reader;
        forEachPrefix(bytes, 2048, 400, [&](const QByteArray& prefix) {
            const ByteSource file = ByteSource::fromBytes(prefix);
            const QStringList props = reader.psdPropsFromData(file);
            ASSERT_EQ(props.size(), 1);
            EXPECT_TRUE(isCleanValue(props.first()));
            EXPECT_TRUE(isCleanValue(reader.psdDuotoneColors(file)));
            EXPECT_GE(reader.resOfOldPSD(file), 0);
            readImageProperties(file);
        });
    }
}

TEST(TruncationSweep, EpsReaders)
{
    // Photoshop EPS, Illustrator EPS with a preview header and a thumbnail, Acrobat EPS with
    // embedded fonts.
    for (const char* sample : {"eps/PostScript.eps", "eps/beamerthemesuse-logo.eps", "eps/connexions.eps",
                               "eps/Envoy_Logo_Final_CMYK-REVERSE.eps"}) {
        const QByteArray bytes = readAll(samplePath(QString::fromLatin1(sample))).left(24 * 1024);
        QNPreflightMethods reader;
        forEachPrefix(bytes, 3 * 1024, 400, [&](const QByteArray& prefix) {
            const ByteSource file = ByteSource::fromBytes(prefix);
            const QString head = textFromBytes(prefix.left(1500));
            const QVariantList vector = reader.readEPS1500(file, head);
            ASSERT_EQ(vector.size(), 5);
            for (const QVariant& value : vector)
                EXPECT_TRUE(isCleanValue(value));
            reader.getRead1500ForPhotoshopEPSWithTIFFPreview(file);
            EXPECT_EQ(reader.embeddedFontsOfVectorEPS(file).size(), 2);
        });
    }
}

TEST(TruncationSweep, IllustratorReaders)
{
    for (const char* sample : {"ai/LgHS-logo.ai", "ai/schblocwebgui.ai"}) {
        const QByteArray bytes = readAll(samplePath(QString::fromLatin1(sample)));
        QNPreflightMethods reader;
        forEachPrefix(bytes, 4096, 250, [&](const QByteArray& prefix) {
            const ByteSource file = ByteSource::fromBytes(prefix);
            const QString model = reader.colorModeOfAIFile(file);
            EXPECT_TRUE(model == u"CMYK" || model == u"RGB" || model == u"?");
            const QNPreflightMethods::AIHeadAndFonts ai = reader.read4500AndFontsOfPreCS3AI(file);
            EXPECT_LE(ai.head.size(), 4500);
            EXPECT_TRUE(isCleanValue(ai.fonts));
        });
    }
}

TEST(TruncationSweep, ImageHeaders)
{
    for (const char* sample :
         {"tiff/ExifTool.tif", "tiff/hopper_g4.tif", "jpeg/GPS.jpg", "jpeg/windowsXpFields.jpg", "other/PNG.png"}) {
        const QByteArray bytes = readAll(samplePath(QString::fromLatin1(sample))).left(16 * 1024);
        QNPreflightMethods reader;
        forEachPrefix(bytes, 4 * 1024, 300, [&](const QByteArray& prefix) {
            const ByteSource file = ByteSource::fromBytes(prefix);
            if (const auto properties = readImageProperties(file)) {
                EXPECT_GE(properties->pixelWidth, 0);
                EXPECT_TRUE(isCleanValue(properties->profileName));
            }
            EXPECT_FALSE(reader.readFromURL(file, QStringLiteral("tif")));
        });
    }
}
