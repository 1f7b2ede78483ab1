#include "support/QtPrinters.h"

#include "support/IdmlFixtures.h"

#include "inspection/DocInfo.h"
#include "inspection/PageSizes.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;

namespace {

BleedOrSlugValues uniform(const QString& value)
{
    return {value, QStringLiteral("true"), QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("0")};
}

BleedOrSlugValues sides(const QString& top, const QString& bottom, const QString& inside, const QString& outside)
{
    return {top, QStringLiteral("false"), bottom, inside, outside};
}

PageSizesDict sizes(std::initializer_list<std::pair<const char*, const char*>> keys)
{
    PageSizesDict dict;
    for (const auto& [width, height] : keys)
        dict[{QLatin1String(width), QLatin1String(height)}] << QStringLiteral("1");
    return dict;
}

} // namespace

TEST(DocInfo, BleedAndSlugTexts)
{
    EXPECT_EQ(bleedOrSlugText(uniform(QStringLiteral("0")), QStringLiteral("Millimeters")), QStringLiteral("-"));
    EXPECT_EQ(bleedOrSlugText(uniform(QStringLiteral("8.503937007900001")), QStringLiteral("Millimeters")),
              QStringLiteral("3 mm"));
    // Picas and other units outside the table show points.
    EXPECT_EQ(bleedOrSlugText(uniform(QStringLiteral("9")), QStringLiteral("Picas")), QStringLiteral("9 pt"));
    // Rounds to nothing: none.
    EXPECT_EQ(bleedOrSlugText(uniform(QStringLiteral("0.001")), QStringLiteral("Millimeters")), QStringLiteral("-"));
    // Not uniform but all four the same: one value.
    EXPECT_EQ(
        bleedOrSlugText(sides(QStringLiteral("72"), QStringLiteral("72"), QStringLiteral("72"), QStringLiteral("72")),
                        QStringLiteral("Inches")),
        QStringLiteral("1 in"));
    // Four different offsets: each converted, the abbreviation once at the end.
    EXPECT_EQ(
        bleedOrSlugText(sides(QStringLiteral("72"), QStringLiteral("36"), QStringLiteral("0"), QStringLiteral("18")),
                        QStringLiteral("Inches")),
        QStringLiteral("1, 0.5, 0, 0.25 in"));
    // The uniform flag wins over differing sides.
    EXPECT_EQ(bleedOrSlugText({QStringLiteral("9"), QStringLiteral("true"), QStringLiteral("1"), QStringLiteral("2"),
                               QStringLiteral("3")},
                              QStringLiteral("Points")),
              QStringLiteral("9 pt"));
    // A missing top with other sides set is not "all equal".
    EXPECT_EQ(bleedOrSlugText(sides(QString(), QStringLiteral("9"), QStringLiteral("9"), QStringLiteral("9")),
                              QStringLiteral("Points")),
              QStringLiteral("0, 9, 9, 9 pt"));
}

TEST(DocInfo, PageSizeTexts)
{
    EXPECT_EQ(pageSizeText({}, QStringLiteral("Millimeters"), QStringLiteral("Millimeters")), QStringLiteral("?"));
    EXPECT_EQ(pageSizeText(sizes({{"612", "792"}, {"595.2756", "841.8898"}}), QStringLiteral("Points"), QString()),
              QStringLiteral("<mixed>"));
    EXPECT_EQ(
        pageSizeText(sizes({{"595.276", "841.89"}}), QStringLiteral("Millimeters"), QStringLiteral("Millimeters")),
        QStringLiteral("210 x 297 mm"));
    EXPECT_EQ(pageSizeText(sizes({{"612", "792"}}), QStringLiteral("Picas"), QStringLiteral("Picas")),
              QStringLiteral("612 x 792 pt"));
    EXPECT_EQ(pageSizeText(sizes({{"841.8898", "1190.5512"}}), QStringLiteral("Centimeters"), QStringLiteral("Points")),
              QStringLiteral("29.72 x 42.03 cm"));
    // The vertical units are not used; text that is no number counts as 0.
    EXPECT_EQ(pageSizeText(sizes({{"612", "abc"}}), QStringLiteral("Points"), QStringLiteral("Millimeters")),
              QStringLiteral("612 x 0 pt"));
}

TEST(DocInfo, NumbersAndFlagsAreReadLikeTheirAttributes)
{
    EXPECT_DOUBLE_EQ(doubleFromString(QStringLiteral(" 595.2756")), 595.2756);
    EXPECT_DOUBLE_EQ(doubleFromString(QStringLiteral("12,5")), 12.5);
    EXPECT_DOUBLE_EQ(doubleFromString(QStringLiteral("3mm")), 3.0);
    EXPECT_DOUBLE_EQ(doubleFromString(QStringLiteral("2e")), 2.0);
    EXPECT_DOUBLE_EQ(doubleFromString(QString()), 0.0);
    EXPECT_TRUE(stringBoolValue(QStringLiteral("YES")));
    EXPECT_TRUE(stringBoolValue(QStringLiteral(" 01")));
    EXPECT_FALSE(stringBoolValue(QStringLiteral("0")));
    EXPECT_FALSE(stringBoolValue(QString()));
}

TEST(DocInfo, PreferencesAndPageSizesOfAnUnpackedFolder)
{
    QTemporaryDir dir;
    const QDir folder(dir.path());
    folder.mkpath(QStringLiteral("Resources"));
    folder.mkpath(QStringLiteral("Spreads"));
    test::writeAll(folder.filePath(QStringLiteral("designmap.xml")),
                   test::designmapXml({QStringLiteral("Spreads/Spread_a.xml"), QStringLiteral("Spreads/Spread_b.xml"),
                                       QStringLiteral("Resources/Preferences.xml")}));
    test::writeAll(folder.filePath(QStringLiteral("Spreads/Spread_a.xml")),
                   test::spreadXml({QStringLiteral("0 0 792 612"), QStringLiteral("0 612 792 1224")}));
    test::writeAll(folder.filePath(QStringLiteral("Spreads/Spread_b.xml")),
                   test::spreadXml({QStringLiteral("0 0 841.889763778 595.275590551"), QString()}));
    test::writeAll(folder.filePath(QStringLiteral("Resources/Preferences.xml")),
                   test::preferencesXml(QStringLiteral("HorizontalMeasurementUnits=\"Inches\" "
                                                       "VerticalMeasurementUnits=\"Millimeters\""),
                                        QStringLiteral("DocumentBleedTopOffset=\"9\" DocumentBleedUniformSize=\"true\" "
                                                       "SlugTopOffset=\"72\" SlugBottomOffset=\"36\" "
                                                       "SlugInsideOrLeftOffset=\"0\" SlugRightOrOutsideOffset=\"18\" "
                                                       "DocumentSlugUniformSize=\"false\"")));

    const PageSizesDict pages = pageSizesInDocument(*test::readPackage(dir.path()));
    ASSERT_EQ(pages.size(), 2);
    EXPECT_EQ(pages.value({QStringLiteral("612"), QStringLiteral("792")}),
              (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    EXPECT_EQ(pages.value({QStringLiteral("595.2756"), QStringLiteral("841.8898")}), QStringList{QStringLiteral("1")});

    QNDocInfo info;
    EXPECT_TRUE(info.parseDocInfoInDocument(*test::readPackage(dir.path())).ok());
    EXPECT_EQ(info.horizMeasurementUnits(), QStringLiteral("Inches"));
    EXPECT_EQ(info.vertMeasurementUnits(), QStringLiteral("Millimeters"));
    EXPECT_EQ(info.bleedStr(), QStringLiteral("0.13 in"));
    EXPECT_EQ(info.slugStr(), QStringLiteral("1, 0.5, 0, 0.25 in"));

    // Without the preferences: points, and no bleed or slug.
    test::writeAll(folder.filePath(QStringLiteral("designmap.xml")), test::designmapXml({}));
    EXPECT_TRUE(info.parseDocInfoInDocument(*test::readPackage(dir.path())).ok()); // some tools write none
    EXPECT_EQ(info.horizMeasurementUnits(), QStringLiteral("Points"));
    EXPECT_EQ(info.bleedStr(), QStringLiteral("-"));
    EXPECT_EQ(info.slugStr(), QStringLiteral("-"));
    // Preferences that are not XML read the same way, and the part is named.
    test::writeAll(folder.filePath(QStringLiteral("designmap.xml")),
                   test::designmapXml({QStringLiteral("Resources/Preferences.xml")}));
    test::writeAll(folder.filePath(QStringLiteral("Resources/Preferences.xml")), "<not xml");
    EXPECT_EQ(info.parseDocInfoInDocument(*test::readPackage(dir.path())).error().text(),
              QStringLiteral("Resources/Preferences.xml: not readable XML at byte 8"));
    EXPECT_EQ(info.slugStr(), QStringLiteral("-"));
}

TEST(DocInfo, DatesSizeAndRecord)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Report.idml"));
    test::writeAll(path, QByteArray(2600, 'x'));
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    QNDocInfo info = QNDocInfo::docInfoWithRecord({QString(), path, QStringLiteral("Report.idml"), QStringLiteral("12"),
                                                   QStringLiteral("3"), QStringLiteral("20.4")},
                                                  english);
    EXPECT_EQ(info.fileSize(), 2600);
    EXPECT_EQ(info.fileSizeStr(), QStringLiteral("3 KB"));
    EXPECT_EQ(info.modDateStr(), english.toString(QFileInfo(path).lastModified(), QLocale::ShortFormat));

    const QVariantMap record = info.toVariantMap();
    EXPECT_EQ(record.value(kDocInfoDocPathKey).toString(), path);
    EXPECT_EQ(record.value(kDocInfoFileSizeKey).toString(), QStringLiteral("3 KB"));

    // A document that cannot be read: empty dates and a zero size.
    QNDocInfo gone = QNDocInfo::docInfoWithDocument(dir.filePath(QStringLiteral("gone.indd")), QStringLiteral("1"),
                                                    QStringLiteral("19.0"));
    EXPECT_TRUE(gone.modDateStr().isEmpty());
    EXPECT_EQ(gone.fileSize(), 0);
    EXPECT_EQ(gone.fileSizeStr(), QStringLiteral("Zero KB"));
}
