#include "inspection/FontFiles.h"

#include "support/FontColorFragment.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;
using inspection::FontFileFinder;

namespace {

// DejaVu Sans comes with fonts-dejavu-core, which the set-up installs.
const QString kInstalledPostScriptName = QStringLiteral("DejaVuSans");

QString installedDejaVuSans()
{
    FontFileFinder finder({});
    const auto file = finder.find(kInstalledPostScriptName, {}, {});
    return file ? file->path : QString();
}

// The same font with the embedding permission of its OS/2 table set to `fsType`.
QByteArray withFsType(QByteArray font, quint16 fsType)
{
    const quint16 tables = qFromBigEndian<quint16>(font.constData() + 4);
    for (int i = 0; i < tables; ++i) {
        const char* record = font.constData() + 12 + 16 * i;
        if (QByteArray(record, 4) == "OS/2") {
            const quint32 offset = qFromBigEndian<quint32>(record + 8);
            qToBigEndian<quint16>(fsType, font.data() + offset + 8);
            return font;
        }
    }
    return {};
}

} // namespace

TEST(FontFiles, InstalledFontsAreFoundByExactPostScriptName)
{
    FontFileFinder finder({});
    const auto file = finder.find(kInstalledPostScriptName, {}, {});
    ASSERT_TRUE(file.has_value()) << "fonts-dejavu-core is not installed";
    EXPECT_TRUE(file->path.endsWith(QStringLiteral("DejaVuSans.ttf"))) << file->path.toStdString();
    EXPECT_EQ(finder.pdfEmbedding(*file), QStringLiteral("Yes"));
    EXPECT_EQ(finder.fontType(*file), QStringLiteral("TrueType"));

    // fontconfig matches names ignoring case; InDesign does not.
    EXPECT_FALSE(finder.find(QStringLiteral("dejavusans"), {}, {}).has_value());
    EXPECT_FALSE(finder.find(QStringLiteral("MinionPro-Regular"), {}, {}).has_value());
    // A font without a PostScript name is looked up by family and style.
    const auto byFamily = finder.find({}, QStringLiteral("DejaVu Sans"), QStringLiteral("Book"));
    ASSERT_TRUE(byFamily.has_value());
    EXPECT_EQ(byFamily->path, file->path);
    EXPECT_FALSE(finder.find({}, {}, {}).has_value());
}

TEST(FontFiles, DocumentFontsFolderComesFirstAndItsPermissionIsRead)
{
    const QString installed = installedDejaVuSans();
    ASSERT_FALSE(installed.isEmpty());
    test::FontColorFragment doc;
    QDir().mkpath(doc.documentFontsFolder() + QStringLiteral("/nested"));
    const QString local = doc.documentFontsFolder() + QStringLiteral("/nested/Copy.ttf");
    test::writeAll(local, withFsType(test::readAll(installed), 0x0002));
    test::writeAll(doc.documentFontsFolder() + QStringLiteral("/notes.txt"), "not a font");

    FontFileFinder finder(doc.documentPath());
    const auto file = finder.find(kInstalledPostScriptName, {}, {});
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(file->path, local);
    EXPECT_EQ(finder.pdfEmbedding(*file), QStringLiteral("No"));

    // Restricted with a less restrictive bit beside it allows embedding; bitmap-only does not.
    test::writeAll(local, withFsType(test::readAll(installed), 0x0006));
    EXPECT_EQ(FontFileFinder(doc.documentPath()).pdfEmbedding(*file), QStringLiteral("Yes"));
    test::writeAll(local, withFsType(test::readAll(installed), 0x0200));
    EXPECT_EQ(FontFileFinder(doc.documentPath()).pdfEmbedding(*file), QStringLiteral("No"));

    EXPECT_EQ(finder.pdfEmbedding({doc.root() + QStringLiteral("/gone.ttf"), 0}), QStringLiteral("?"));
    EXPECT_EQ(finder.fontType({doc.root() + QStringLiteral("/gone.ttf"), 0}), QStringLiteral("Unknown"));
}

TEST(FontFiles, TruncatedDocumentFontsNeverCrashTheLookup)
{
    const QByteArray font = test::readAll(installedDejaVuSans());
    ASSERT_FALSE(font.isEmpty());
    test::FontColorFragment doc;
    QDir().mkpath(doc.documentFontsFolder());
    const QString local = doc.documentFontsFolder() + QStringLiteral("/Cut.ttf");
    for (qsizetype size = 0; size < font.size(); size += font.size() / 40 + 1) {
        test::writeAll(local, font.left(size));
        FontFileFinder finder(doc.documentPath());
        const auto file = finder.find(kInstalledPostScriptName, {}, {});
        ASSERT_TRUE(file.has_value()); // from the Document fonts copy or, failing that, the installed one
        const QString embed = finder.pdfEmbedding(*file);
        EXPECT_TRUE(embed == QStringLiteral("Yes") || embed == QStringLiteral("No") || embed == QStringLiteral("?"));
    }
}
