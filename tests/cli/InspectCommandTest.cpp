#include "CliRunner.h"
#include "JsonSchema.h"

#include "support/TestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using quillon::test::runQuillon;

namespace {

QString sample(const char* relative)
{
    return QStringLiteral("../shared/samples/") + QLatin1String(relative);
}

} // namespace

TEST(InspectCommand, TextAndJsonForSeveralKinds)
{
    const auto text =
        runQuillon({QStringLiteral("inspect"), sample("psd/4x4_8bit_duotone.psd"), sample("tiff/ExifTool.tif")});
    EXPECT_EQ(text.exitCode, 0) << text.err.toStdString();
    EXPECT_TRUE(text.out.contains("Duotone inks: Black, PANTONE 327 CVC")) << text.out.toStdString();
    EXPECT_TRUE(text.out.contains("TIFF compression: 5 (LZW)"));
    EXPECT_TRUE(text.out.contains("Profile: sRGB IEC61966-2.1"));

    const auto json = runQuillon({QStringLiteral("inspect"), QStringLiteral("--format"), QStringLiteral("json"),
                                  sample("ai/Banner_EasyDisplay.ai"), sample("eps/Envoy_Logo_Final_CMYK-REVERSE.eps")});
    ASSERT_EQ(json.exitCode, 0) << json.err.toStdString();
    const QJsonArray records = quillon::test::jsonEntries(json.out);
    ASSERT_EQ(records.size(), 2);
    EXPECT_EQ(records[0].toObject().value(QStringLiteral("illustratorColorModel")).toString(), u"CMYK");
    EXPECT_EQ(records[0].toObject().value(QStringLiteral("spotColors")).toArray().first().toString(), u"PANTONE 307 C");
    EXPECT_EQ(records[1].toObject().value(QStringLiteral("spotColorCount")).toString(), u"3");
}

TEST(InspectCommand, UnreadableFilesFailTheRunButNotTheOthers)
{
    const auto run = runQuillon({QStringLiteral("inspect"), sample("psd/no such file.psd"), sample("jpeg/GPS.jpg")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("quillon inspect: ") && run.err.contains("no such file.psd: the file does not exist"))
        << run.err.toStdString();
    EXPECT_FALSE(run.out.contains("no such file"));
    EXPECT_TRUE(run.out.contains("Pixel size: 120 x 80"));
    // A file named as a kind it is not is said to be so, not listed as that kind.
    QTemporaryDir dir;
    const QString psd = dir.filePath(QStringLiteral("empty.psd"));
    QFile(psd).open(QIODevice::WriteOnly);
    const auto empty = runQuillon({QStringLiteral("inspect"), psd});
    EXPECT_EQ(empty.exitCode, 2);
    EXPECT_TRUE(empty.err.contains("empty.psd: not a Photoshop file (no 8BPS signature)")) << empty.err.toStdString();
    EXPECT_FALSE(empty.out.contains("Kind: Photoshop"));
    // The signature alone is no Photoshop file either, and has no metadata to show.
    const QString signatureOnly = dir.filePath(QStringLiteral("short.psd"));
    quillon::test::writeAll(signatureOnly, "8BPS");
    for (const char* command : {"inspect", "metadata"}) {
        const auto cut = runQuillon({QLatin1String(command), signatureOnly});
        EXPECT_EQ(cut.exitCode, 2) << command;
        EXPECT_TRUE(cut.err.contains("short.psd: is a Photoshop file whose header is cut short"))
            << cut.err.toStdString();
    }
    EXPECT_EQ(runQuillon({QStringLiteral("metadata"), psd}).exitCode, 2);
    EXPECT_NE(runQuillon({QStringLiteral("inspect"), QStringLiteral("--format"), QStringLiteral("xml"),
                          sample("jpeg/GPS.jpg")})
                  .exitCode,
              0);
}

TEST(MetadataCommand, RowsOfImagesAndPageSizeOfPdfs)
{
    const auto gps = runQuillon({QStringLiteral("metadata"), sample("jpeg/GPS.jpg")});
    EXPECT_EQ(gps.exitCode, 0);
    EXPECT_TRUE(gps.out.contains("[GPS]\n  Latitude: 54.98966 N\n  Longtitude: 1.914166 W")) << gps.out.toStdString();

    const auto json = runQuillon(
        {QStringLiteral("metadata"), QStringLiteral("--format"), QStringLiteral("json"), sample("jpeg/Kodak.jpg")});
    const QJsonArray rows = quillon::test::jsonEntries(json.out)[0].toObject().value(QStringLiteral("rows")).toArray();
    ASSERT_FALSE(rows.isEmpty());
    EXPECT_EQ(rows[0].toObject().value(QStringLiteral("tag")).toString(), u"EXIF");

    const auto pdf = runQuillon({QStringLiteral("metadata"), sample("other/PDF.pdf")});
    EXPECT_TRUE(pdf.out.contains("Page Size: 8 x 8 pt")) << pdf.out.toStdString();
    EXPECT_TRUE(runQuillon({QStringLiteral("metadata"), sample("jpeg/noExif.jpg")}).out.isEmpty());

    const auto missing = runQuillon({QStringLiteral("metadata"), sample("jpeg/none.jpg")});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_TRUE(missing.err.contains("none.jpg: the file does not exist")) << missing.err.toStdString();

    // A PDF that cannot be read has no page size, not one of 0 x 0.
    QTemporaryDir dir;
    const QString broken = dir.filePath(QStringLiteral("broken.pdf"));
    QFile file(broken);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("%PDF-1.4\nnot really");
    file.close();
    const auto unreadable = runQuillon({QStringLiteral("metadata"), broken});
    EXPECT_EQ(unreadable.exitCode, 2);
    EXPECT_TRUE(unreadable.err.contains("broken.pdf: is a PDF that cannot be read")) << unreadable.err.toStdString();
    EXPECT_FALSE(unreadable.out.contains("0 x 0"));
}
