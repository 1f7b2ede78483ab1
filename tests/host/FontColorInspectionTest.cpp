#include "host/FontColorInspection.h"
#include "idml/IdmlDocument.h"

#include "support/FontColorFragment.h"
#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"
#include "support/UnpackForTest.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <bit>

using namespace quillon;
using namespace quillon::host;

namespace {

// A package that cannot be read at all is refused with an error naming a file.
void expectAllFail(const QString& package, const QString& mustName)
{
    const auto document = idml::IdmlDocument::fromFolder(package);
    ASSERT_FALSE(document.ok());
    EXPECT_TRUE(document.error().text().contains(mustName)) << document.error().text().toStdString();
}

QStringList texts(const inspection::PartWarnings& warnings)
{
    QStringList out;
    for (const app::Error& warning : warnings)
        out.append(warning.text());
    return out;
}

QStringList names(const QVariantList& records)
{
    QStringList names;
    for (const QVariant& record : records)
        names.append(record.toMap().value(QStringLiteral("name")).toString());
    return names;
}

} // namespace

TEST(FontColorInspection, BrokenPackagesAreReportedByName)
{
    QTemporaryDir dir;
    expectAllFail(dir.filePath(QStringLiteral("nowhere")), QStringLiteral("nowhere"));
    expectAllFail(dir.path(), QStringLiteral("designmap.xml"));

    test::FontColorFragment outside;
    outside.designMapExtra(R"(<idPkg:Story src="../../etc/passwd" />)");
    expectAllFail(outside.write(), QStringLiteral("outside"));
}

TEST(FontColorInspection, UnreadablePartsAreSkippedAndNamedTheRestIsInspected)
{
    test::FontColorFragment doc;
    doc.styles("<RootParagraphStyleGroup")
        .graphic(R"(<Color Self="Color/Red" Model="Process" Space="CMYK" ColorValue="0 100 100 0" Name="Red" />
<Color Self="Color/Blue" Model="Process" Space="CMYK" ColorValue="100 100 0 0" Name="Blue" />)")
        .story("<ParagraphStyleRange>")
        .story(R"(<ParagraphStyleRange><CharacterStyleRange FillColor="Color/Red" FontStyle="Bold">
<Properties><AppliedFont type="string">Good Family</AppliedFont></Properties><Content>x</Content>
</CharacterStyleRange></ParagraphStyleRange>)")
        .story("<ParagraphStyleRange />");
    const QString package = doc.write();
    QFile::remove(package + QStringLiteral("/Stories/Story_s3.xml"));

    const QStringList expected{QStringLiteral("Resources/Styles.xml: not readable XML at byte 181"),
                               QStringLiteral("Stories/Story_s1.xml: not readable XML at byte 195"),
                               QStringLiteral("Stories/Story_s3.xml: missing from the package")};
    const auto fonts = processFontsFromIdml(*test::readPackage(package), doc.documentPath());
    ASSERT_TRUE(fonts.ok()) << fonts.error().text().toStdString();
    EXPECT_EQ(texts(fonts->skipped), expected);
    EXPECT_EQ(names(fonts->found), QStringList{"Good Family Bold"});

    const auto colors = processColorsFromIdml(*test::readPackage(package), QStringLiteral("1"));
    ASSERT_TRUE(colors.ok()) << colors.error().text().toStdString();
    EXPECT_EQ(texts(colors->skipped), expected);
    EXPECT_EQ(colors->found.namesOfUnusedColors, QStringList{"Blue"});

    const auto report = paraReportFromIdml(*test::readPackage(package));
    ASSERT_TRUE(report.ok());
    EXPECT_EQ(texts(report->skipped), expected);
}

TEST(FontColorInspection, TextNestedAnyDepthIsWalked)
{
    QByteArray deep;
    for (int i = 0; i < 5000; ++i)
        deep += "<XMLElement Self=\"x\">";
    deep += "<ParagraphStyleRange><CharacterStyleRange FillColor=\"Color/Registration\"><Properties><AppliedFont "
            "type=\"string\">Deep Family</AppliedFont></Properties><Content>x</Content></CharacterStyleRange>"
            "</ParagraphStyleRange>";
    for (int i = 0; i < 5000; ++i)
        deep += "</XMLElement>";
    test::FontColorFragment doc;
    doc.graphic(
           R"(<Color Self="Color/Registration" Model="Registration" Space="CMYK" ColorValue="100 100 100 100" ColorOverride="Specialregistration" Name="Registration" />)")
        .story(deep);
    const QString package = doc.write();
    const auto fonts = processFontsFromIdml(*test::readPackage(package), doc.documentPath());
    ASSERT_TRUE(fonts.ok());
    EXPECT_TRUE(fonts->skipped.isEmpty());
    EXPECT_EQ(names(fonts->found), QStringList{"Deep Family"});
    const auto colors = processColorsFromIdml(*test::readPackage(package), QStringLiteral("1"));
    ASSERT_TRUE(colors.ok());
    EXPECT_EQ(colors->found.registrationInTextCount, 1);
}

TEST(FontColorInspection, TruncatedPartsAreNeverPassedSilently)
{
    const auto unpacked = test::unpackForTest(test::samplePath(QStringLiteral("idml/helloworld-1.idml")));
    ASSERT_TRUE(unpacked);
    const QString package = unpacked->path();
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
        // A failure, or a warning naming the part: never a silent pass.
        int told = 0;
        int truncations = 0;
        auto tells = [&](const auto& result, const inspection::PartWarnings& skipped) {
            return !result.ok() || texts(skipped).join(u'\n').contains(QLatin1String(part)) ? 1 : 0;
        };
        for (qsizetype size = 0; size < whole.size(); size += whole.size() / 30 + 1) {
            test::writeAll(path, whole.left(size));
            // A package whose designmap cannot be read is refused whole: a failure for every reader.
            const auto document = idml::IdmlDocument::fromFolder(package);
            if (!document) {
                told += std::popcount(static_cast<unsigned>(readers));
                truncations += std::popcount(static_cast<unsigned>(readers));
                continue;
            }
            if (readers & Fonts) {
                const auto fonts = processFontsFromIdml(**document, doc);
                told += tells(fonts, fonts.ok() ? fonts->skipped : inspection::PartWarnings{});
                ++truncations;
            }
            if (readers & Colors) {
                const auto colors = processColorsFromIdml(**document, QStringLiteral("1"));
                told += tells(colors, colors.ok() ? colors->skipped : inspection::PartWarnings{});
                ++truncations;
            }
            if (readers & Styles) {
                const auto report = paraReportFromIdml(**document);
                told += tells(report, report.ok() ? report->skipped : inspection::PartWarnings{});
                ++truncations;
            }
        }
        EXPECT_EQ(told, truncations) << part;
        test::writeAll(path, whole);
    }
}
