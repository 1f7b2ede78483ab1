#include "preflight/FontColorInspection.h"

#include "app/PropertyList.h"
#include "preflight/ColorRecordKeys.h"
#include "preflight/FontRecordKeys.h"

#include "FontColorFragment.h"
#include "support/TestSupport.h"
#include "support/UnpackForTest.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::preflight;

namespace {

const QString kFontData = QStringLiteral("qnf_tmpFontData.plist");
const QString kColorData = QStringLiteral("qnf_tmpColorData.plist");

bool exists(const QString& folder, const QString& name)
{
    return QFileInfo::exists(QDir(folder).filePath(name));
}

// The three inspections of one package: all succeed, or all fail with an error naming a file
// and write nothing.
void expectAllFail(const QString& package, const QString& mustName)
{
    QTemporaryDir data;
    const QString doc = QDir(package).filePath(QStringLiteral("../Doc.indd"));
    const app::Status fonts = processFontsFromIdml(package, doc, data.path());
    const app::Status colors = processColorsFromIdml(package, doc, data.path(), QStringLiteral("1"));
    const auto report = paraReportFromIdml(package);
    ASSERT_FALSE(fonts.ok());
    ASSERT_FALSE(colors.ok());
    ASSERT_FALSE(report.ok());
    for (const app::Error& error : {fonts.error(), colors.error(), report.error()})
        EXPECT_TRUE(error.text().contains(mustName)) << error.text().toStdString();
    EXPECT_FALSE(exists(data.path(), kFontData));
    EXPECT_FALSE(exists(data.path(), kColorData));
}

} // namespace

TEST(FontColorInspection, OfflineInspectionsWriteTheDataFilesOfTheDocument)
{
    const QString sample = test::samplePath(QStringLiteral("idml/helloworld-1.idml"));
    const auto unpacked = test::unpackForTest(sample);
    ASSERT_TRUE(unpacked);
    QTemporaryDir data;
    ASSERT_TRUE(processFontsFromIdml(unpacked->path(), sample, data.path()).ok());
    ASSERT_TRUE(processColorsFromIdml(unpacked->path(), sample, data.path(), QStringLiteral("1")).ok());

    const auto fonts = app::readPropertyListDictionary(QDir(data.path()).filePath(kFontData));
    ASSERT_TRUE(fonts.ok());
    ASSERT_EQ(fonts->keys(), QStringList{sample});
    const QVariantMap fontEntry = fonts->value(sample).toMap();
    EXPECT_EQ(fontEntry.value(QStringLiteral("name")), QStringLiteral("helloworld-1.idml"));
    EXPECT_EQ(fontEntry.value(QStringLiteral("isDock")), QVariant(true));
    const QVariantList fontRecords = fontEntry.value(QStringLiteral("children")).toList();
    ASSERT_EQ(fontRecords.size(), 1);
    EXPECT_EQ(fontRecords[0].toMap().value(kFontNameKey), QStringLiteral("Times New Roman Regular"));
    EXPECT_EQ(fontRecords[0].toMap().value(kFontPsFontKey), QStringLiteral("TimesNewRomanPSMT"));
    EXPECT_EQ(fontRecords[0].toMap().value(kFontTypeKey), QStringLiteral("OpenType TT"));

    const auto colors = app::readPropertyListDictionary(QDir(data.path()).filePath(kColorData));
    ASSERT_TRUE(colors.ok());
    const QVariantMap colorEntry = colors->value(sample).toMap();
    EXPECT_EQ(colorEntry.value(QStringLiteral("children")).toList().size(), 10);
    EXPECT_EQ(colorEntry.value(kColorDocUnusedNamesKey).toStringList().size(), 5);
    EXPECT_EQ(colorEntry.value(kColorDocRegistrationInTextCountKey).toInt(), 0);

    const auto report = paraReportFromIdml(unpacked->path());
    ASSERT_TRUE(report.ok());
    EXPECT_TRUE(report->startsWith(QStringLiteral("Paragraph styles in use (1)\n\n[Basic Paragraph]: 1 paragraph\n")))
        << report->toStdString();
}

TEST(FontColorInspection, BrokenPackagesAreReportedByName)
{
    QTemporaryDir dir;
    expectAllFail(dir.filePath(QStringLiteral("nowhere")), QStringLiteral("nowhere"));
    expectAllFail(dir.path(), QStringLiteral("designmap.xml"));

    test::FontColorFragment outside;
    outside.designMapExtra(R"(<idPkg:Story src="../../etc/passwd" />)");
    expectAllFail(outside.write(), QStringLiteral("outside"));

    test::FontColorFragment garbage;
    garbage.styles("<RootParagraphStyleGroup").story("<ParagraphStyleRange>");
    expectAllFail(garbage.write(), QStringLiteral("Styles.xml"));

    test::FontColorFragment missingStory;
    missingStory.story("<ParagraphStyleRange />");
    const QString package = missingStory.write();
    QFile::remove(package + QStringLiteral("/Stories/Story_s1.xml"));
    expectAllFail(package, QStringLiteral("Story_s1.xml"));
}

TEST(FontColorInspection, HostileNestingIsRefusedNotFollowed)
{
    QByteArray deep;
    for (int i = 0; i < 5000; ++i)
        deep += "<XMLElement Self=\"x\">";
    deep += "<ParagraphStyleRange><CharacterStyleRange "
            "FillColor=\"Color/Black\"><Content>x</Content></CharacterStyleRange></ParagraphStyleRange>";
    for (int i = 0; i < 5000; ++i)
        deep += "</XMLElement>";
    test::FontColorFragment doc;
    doc.graphic(
           R"(<Color Self="Color/Registration" Model="Registration" Space="CMYK" ColorValue="100 100 100 100" ColorOverride="Specialregistration" Name="Registration" />)")
        .story(deep);
    const QString package = doc.write();
    QTemporaryDir data;
    const app::Status fonts = processFontsFromIdml(package, doc.documentPath(), data.path());
    ASSERT_FALSE(fonts.ok());
    EXPECT_TRUE(fonts.error().text().contains(QStringLiteral("nested")));
    EXPECT_FALSE(paraReportFromIdml(package).ok());
    // The swatch scan itself walks any depth; only counting text needs the story walk.
    EXPECT_TRUE(processColorsFromIdml(package, doc.documentPath(), data.path(), QStringLiteral("0")).ok());
    EXPECT_FALSE(processColorsFromIdml(package, doc.documentPath(), data.path(), QStringLiteral("1")).ok());
}

TEST(FontColorInspection, TruncatedPartsGiveAnErrorOrAResultNeverACrash)
{
    const auto unpacked = test::unpackForTest(test::samplePath(QStringLiteral("idml/helloworld-1.idml")));
    ASSERT_TRUE(unpacked);
    const QString package = unpacked->path();
    QTemporaryDir data;
    const QString doc = QDir(package).filePath(QStringLiteral("../Doc.indd"));
    enum Reader { Fonts = 1, Colors = 2, Styles = 4, All = 7 };
    const std::pair<const char*, int> parts[] = {{"Resources/Styles.xml", All},
                                                 {"Resources/Graphic.xml", Colors},
                                                 {"Resources/Fonts.xml", Fonts},
                                                 {"Stories/Story_ud5.xml", All},
                                                 {"designmap.xml", All}};
    for (const auto& [part, readers] : parts) {
        const QString path = QDir(package).filePath(QLatin1String(part));
        const QByteArray whole = test::readAll(path);
        ASSERT_FALSE(whole.isEmpty()) << part;
        int failures = 0;
        for (qsizetype size = 0; size < whole.size(); size += whole.size() / 30 + 1) {
            test::writeAll(path, whole.left(size));
            if (readers & Fonts)
                failures += processFontsFromIdml(package, doc, data.path()).ok() ? 0 : 1;
            if (readers & Colors)
                failures += processColorsFromIdml(package, doc, data.path(), QStringLiteral("1")).ok() ? 0 : 1;
            if (readers & Styles)
                failures += paraReportFromIdml(package).ok() ? 0 : 1;
        }
        EXPECT_GT(failures, 0) << part;
        test::writeAll(path, whole);
    }
}
