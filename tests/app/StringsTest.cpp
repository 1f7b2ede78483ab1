#include "app/Strings.h"

#include <QDateTime>
#include <QTimeZone>

#include <gtest/gtest.h>

using namespace quillon::app;

TEST(Versions, TrailingZeroGroupsAreDropped)
{
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(QStringLiteral("17.0.0")), QStringLiteral("17"));
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(QStringLiteral("10")), QStringLiteral("10"));
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(QStringLiteral("17.10")), QStringLiteral("17.10"));
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(QStringLiteral("20.0.10")), QStringLiteral("20.0.10"));
}

TEST(Versions, CompareNumericallyIgnoringTrailingZeros)
{
    EXPECT_EQ(checkVersion(QStringLiteral("2.1"), QStringLiteral("2.1.0")), 0);
    EXPECT_EQ(checkVersion(QStringLiteral("10.10"), QStringLiteral("10.9")), 1);
    EXPECT_EQ(checkVersion(QStringLiteral("10.9"), QStringLiteral("10.10")), 2);
    EXPECT_EQ(checkVersion(QStringLiteral("18.5"), QStringLiteral("18.5.1")), 2);
    EXPECT_EQ(checkVersion(QStringLiteral("19"), QStringLiteral("18.99.99")), 1);
    EXPECT_EQ(checkVersion(QStringLiteral(""), QStringLiteral("1")), 2);
}

TEST(Strings, NumericCompareSortsNumbersByValueAndIgnoresCase)
{
    EXPECT_LT(numericCompare(QStringLiteral("Page 9"), QStringLiteral("page 10")), 0);
    EXPECT_GT(numericCompare(QStringLiteral("file100"), QStringLiteral("File20")), 0);
    EXPECT_EQ(numericCompare(QStringLiteral("ABC"), QStringLiteral("abc")), 0);
    EXPECT_EQ(numericCompare(QStringLiteral("a007"), QStringLiteral("a7")), 0);
    EXPECT_LT(numericCompare(QStringLiteral("a"), QStringLiteral("ab")), 0);
    // Digit runs longer than any integer type still compare correctly.
    EXPECT_LT(numericCompare(QStringLiteral("x99999999999999999999999"), QStringLiteral("x100000000000000000000000")),
              0);
}

TEST(Strings, FirstFoundStringFollowsArrayOrderNotPosition)
{
    const QString text = QStringLiteral("Adobe InDesign 2024 (CC)");
    FoundRange r = rangeOfFirstFoundStringFromArray(text, {QStringLiteral("2024"), QStringLiteral("Adobe")});
    EXPECT_EQ(r.location, 15);
    EXPECT_EQ(r.length, 4);
    EXPECT_FALSE(rangeOfFirstFoundStringFromArray(text, {QStringLiteral("indesign")}).found());
    EXPECT_TRUE(rangeOfFirstFoundStringFromArray(text, {QStringLiteral("indesign")}, Qt::CaseInsensitive).found());
    EXPECT_FALSE(rangeOfFirstFoundStringFromArray(text, {}).found());
}

TEST(Strings, PathExtensionIsReplacedOrAdded)
{
    EXPECT_EQ(stringByReplacingPathExtensionWith(QStringLiteral("/a/Doc.indd"), QStringLiteral("idml")),
              QStringLiteral("/a/Doc.idml"));
    EXPECT_EQ(stringByReplacingPathExtensionWith(QStringLiteral("/a/Doc"), QStringLiteral("pdf")),
              QStringLiteral("/a/Doc.pdf"));
    EXPECT_EQ(stringByReplacingPathExtensionWith(QStringLiteral("/a.b/Doc"), QStringLiteral("pdf")),
              QStringLiteral("/a.b/Doc.pdf"));
    EXPECT_EQ(stringByReplacingPathExtensionWith(QStringLiteral("/a/.hidden"), QStringLiteral("txt")),
              QStringLiteral("/a/.hidden.txt"));
    EXPECT_EQ(stringByReplacingPathExtensionWith(QStringLiteral("Doc.v2.indd"), QStringLiteral("idml")),
              QStringLiteral("Doc.v2.idml"));
}

TEST(Strings, EscapingPutsBackslashBeforeEachGivenCharacter)
{
    EXPECT_EQ(stringByEscapingCharacters(QStringLiteral("My \"big\" doc"), {QStringLiteral("\"")}),
              QStringLiteral("My \\\"big\\\" doc"));
    EXPECT_EQ(stringByEscapingCharacters(QStringLiteral("a\\b\"c"), {QStringLiteral("\\"), QStringLiteral("\"")}),
              QStringLiteral("a\\\\b\\\"c"));
}

TEST(Strings, DatesFormatWithUnicodePatterns)
{
    const QDateTime dt(QDate(2024, 3, 5), QTime(14, 7, 9), QTimeZone::utc());
    EXPECT_EQ(formatDate(dt, QStringLiteral("yyyy-MM-dd HH:mm:ss")), QStringLiteral("2024-03-05 14:07:09"));
    EXPECT_EQ(formatDate(dt, QStringLiteral("MMM d, y")), QStringLiteral("Mar 5, 2024"));
    EXPECT_EQ(formatDate(dt, QStringLiteral("h:mm a")), QStringLiteral("2:07 PM"));
}
