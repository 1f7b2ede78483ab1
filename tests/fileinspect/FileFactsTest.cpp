#include "fileinspect/FileFacts.h"

#include "Fixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using namespace quillon::fileinspect;
using quillon::test::samplePath;

namespace {

FileFacts facts(const char* sample)
{
    return inspectFile(samplePath(QString::fromLatin1(sample)));
}

} // namespace

TEST(FileFacts, PhotoshopFiles)
{
    const FileFacts duotone = facts("psd/4x4_8bit_duotone.psd");
    EXPECT_EQ(duotone.kind, FileKind::Photoshop);
    EXPECT_EQ(duotone.colorMode, u"Duotone");
    EXPECT_EQ(duotone.duotoneInks, QStringList({"Black", "PANTONE 327 CVC"}));
    EXPECT_EQ(duotone.profile, u"");

    const FileFacts cmyk = facts("psd/4x4_8bit_cmyk.psd");
    EXPECT_EQ(cmyk.colorMode, u"CMYK");
    EXPECT_EQ(cmyk.pixelWidth, 4);
    EXPECT_TRUE(cmyk.error.isEmpty());
    EXPECT_EQ(facts("psd/4x4_16bit_multichannel.psd").colorMode, u"Multichannel");
}

TEST(FileFacts, EpsFiles)
{
    const FileFacts envoy = facts("eps/Envoy_Logo_Final_CMYK-REVERSE.eps");
    EXPECT_EQ(envoy.kind, FileKind::EPS);
    EXPECT_EQ(envoy.spotColorCount, u"3");
    EXPECT_EQ(envoy.illustratorVersion, 17u);

    // Photoshop EPS files, with and without a preview header.
    const FileFacts bitmap = facts("eps/1.eps");
    EXPECT_EQ(bitmap.colorMode, u"Black and White");
    EXPECT_EQ(bitmap.pixelWidth, 100);
    EXPECT_EQ(bitmap.resolution, u"100");
    const FileFacts jpeg = facts("eps/adobeJpeg1.eps");
    EXPECT_EQ(jpeg.colorMode, u"RGB");
    EXPECT_EQ(jpeg.resolution, u"101");
    // This file quotes other EPS headers after its own; the last bounding box counts, as it does
    // in the link analysis.
    EXPECT_EQ(facts("eps/PostScript.eps").resolution, u"1");
    EXPECT_EQ(facts("eps/pil_sample_cmyk.eps").colorMode, u"CMYK");
    EXPECT_TRUE(facts("eps/pil_sample_cmyk.eps").resolution.isEmpty()); // no high-resolution box
}

TEST(FileFacts, IllustratorFiles)
{
    const FileFacts banner = facts("ai/Banner_EasyDisplay.ai");
    EXPECT_EQ(banner.kind, FileKind::Illustrator);
    EXPECT_EQ(banner.illustratorColorModel, u"CMYK");
    EXPECT_EQ(banner.spotColors, QStringList{"PANTONE 307 C"});
}

TEST(FileFacts, ImageAndPdfFiles)
{
    const FileFacts lzw = facts("tiff/ExifTool.tif");
    EXPECT_EQ(lzw.kind, FileKind::TIFF);
    EXPECT_EQ(lzw.tiffCompression, 5);
    EXPECT_EQ(lzw.tiffCompressionName, u"LZW"_s);
    const FileFacts packBits = facts("tiff/copyleft.tiff");
    EXPECT_EQ(packBits.tiffCompression, 32773);
    EXPECT_FALSE(packBits.tiffCompressionName);

    const FileFacts cmykJpeg = facts("jpeg/pil_sample_cmyk.jpg");
    EXPECT_EQ(cmykJpeg.kind, FileKind::JPEG);
    EXPECT_EQ(cmykJpeg.colorMode, u"CMYK");
    EXPECT_FALSE(cmykJpeg.tiffCompression);

    const FileFacts pdf = facts("other/PDF.pdf");
    EXPECT_EQ(pdf.kind, FileKind::PDF);
    EXPECT_EQ(pdf.pageWidth, 8.0);
    EXPECT_EQ(pdf.pageHeight, 8.0);
    EXPECT_EQ(facts("other/ICC_Profile.icc").profile, u"Nikon Adobe RGB 4.0.0.3000");
}

TEST(FileFacts, KindsByContentThenExtension)
{
    quillon::test::TempFiles files;
    // Content wins over a misleading extension; an Illustrator file in PDF form is told by ".ai".
    EXPECT_EQ(detectFileKind(files.write(u"photo.eps"_s, "8BPS\0\1")), FileKind::Photoshop);
    EXPECT_EQ(detectFileKind(files.write(u"art.ai"_s, "%PDF-1.5\n")), FileKind::Illustrator);
    EXPECT_EQ(detectFileKind(files.write(u"art.pdf"_s, "%PDF-1.5\n")), FileKind::PDF);
    EXPECT_EQ(detectFileKind(files.write(u"art.bin"_s, "%!PS-Adobe-3.0 EPSF-3.0\n")), FileKind::EPS);
    EXPECT_EQ(detectFileKind(files.write(u"a.jpg"_s, "not really")), FileKind::JPEG);
    EXPECT_EQ(detectFileKind(files.write(u"notes.txt"_s, "text")), FileKind::Unknown);
    // Another image format needs no kind of its own for its size and profile.
    const FileFacts webp = inspectFile(files.write(
        u"a.webp"_s, quillon::test::webpWithProfile(quillon::test::readAll(samplePath("other/ICC_Profile.icc")))));
    EXPECT_EQ(webp.kind, FileKind::Unknown);
    EXPECT_EQ(webp.pixelWidth, 5);
    EXPECT_EQ(webp.profile, u"Nikon Adobe RGB 4.0.0.3000");
    EXPECT_EQ(detectFileKind(samplePath("eps/adobeJpeg1.eps")), FileKind::EPS);
}

TEST(FileFacts, UnreadableFilesSayWhy)
{
    const FileFacts missing = inspectFile(samplePath("psd/no such file.psd"));
    EXPECT_EQ(missing.kind, FileKind::Photoshop);
    EXPECT_EQ(missing.error, u"the file does not exist");
    EXPECT_EQ(inspectFile(samplePath("psd")).error, u"is not a regular file (a folder)");

    quillon::test::TempFiles files;
    ASSERT_EQ(::mkfifo(QFile::encodeName(files.path(u"pipe.psd"_s)).constData(), 0600), 0);
    EXPECT_EQ(inspectFile(files.path(u"pipe.psd"_s)).error, u"is not a regular file (a FIFO)");

    // The kind comes from the content; a name alone is not believed.
    for (const QByteArray& bytes : {QByteArray(), QByteArray("\x12\x34 random bytes, no header")}) {
        EXPECT_EQ(inspectFile(files.write(u"fake.psd"_s, bytes)).error, u"not a Photoshop file (no 8BPS signature)");
        EXPECT_EQ(inspectFile(files.write(u"fake.pdf"_s, bytes)).error,
                  u"not a PDF file (no %PDF- header in its first 1024 bytes)");
    }
    const FileFacts broken = inspectFile(files.write(u"broken.pdf"_s, "%PDF-1.4\nnothing else"));
    EXPECT_TRUE(broken.error.startsWith(QLatin1String("is a PDF that cannot be read"))) << broken.error.toStdString();

    // Three gigabytes that are not a PDF, or only pretend to be, are refused without being scanned.
    for (const QByteArray& head : {QByteArray("GIF89a"), QByteArray("%PDF-1.7\n%garbage")}) {
        const QString huge = files.write(u"huge.pdf"_s, head);
        ASSERT_EQ(::truncate(QFile::encodeName(huge).constData(), 3LL << 30), 0);
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(inspectFile(huge).error.isEmpty());
        EXPECT_LT(timer.elapsed(), 5000) << head.toStdString();
    }
}

TEST(FileFacts, RecordsLeaveOutWhatIsNotKnown)
{
    const QVariantMap tiff = factsRecord(facts("tiff/ExifTool.tif"));
    EXPECT_EQ(tiff.value(factkeys::kKind).toString(), u"TIFF");
    EXPECT_FALSE(tiff.contains(factkeys::kFonts));
    EXPECT_FALSE(tiff.contains(factkeys::kError));

    const QVariantMap ai = factsRecord(facts("ai/schblocwebgui.ai"));
    EXPECT_EQ(ai.value(factkeys::kFonts).toStringList(), QStringList{"Myriad-Roman"});
    EXPECT_EQ(ai.value(factkeys::kIllustratorVersion).toInt(), 11);
    EXPECT_FALSE(ai.contains(factkeys::kTiffCompression));
}

TEST(FileFacts, ManyFilesOnSeveralThreadsGiveTheSameFacts)
{
    QStringList paths;
    for (const char* folder : {"psd", "eps", "ai", "tiff", "jpeg", "other"})
        for (const QFileInfo& file : QDir(samplePath(QString::fromLatin1(folder))).entryInfoList(QDir::Files))
            paths << file.filePath();
    paths += paths;
    const QList<FileFacts> parallel = inspectFiles(paths, 2);
    ASSERT_EQ(parallel.size(), paths.size());
    for (qsizetype i = 0; i < paths.size(); ++i)
        EXPECT_EQ(factsRecord(parallel[i]), factsRecord(inspectFile(paths[i]))) << paths[i].toStdString();
}
