#include "app/Strings.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::app;

TEST(Versions, TrailingZeroGroupsAreDroppedAndNumbersCompared)
{
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(u"17.0.0"_s), u"17"_s);
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(u"10"_s), u"10"_s);
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(u"17.10"_s), u"17.10"_s);
    EXPECT_EQ(versionNumberByRemovingTrailingZeros(u"20.0.10"_s), u"20.0.10"_s);
    // Compared numerically, trailing zeros ignored.
    EXPECT_EQ(checkVersion(u"2.1"_s, u"2.1.0"_s), 0);
    EXPECT_EQ(checkVersion(u"10.10"_s, u"10.9"_s), 1);
    EXPECT_EQ(checkVersion(u"10.9"_s, u"10.10"_s), 2);
    EXPECT_EQ(checkVersion(u"18.5"_s, u"18.5.1"_s), 2);
    EXPECT_EQ(checkVersion(u"19"_s, u"18.99.99"_s), 1);
    EXPECT_EQ(checkVersion(u""_s, u"1"_s), 2);
}

TEST(Strings, NumericCompareSortsNumbersByValueAndIgnoresCase)
{
    EXPECT_LT(numericCompare(u"Page 9"_s, u"page 10"_s), 0);
    EXPECT_GT(numericCompare(u"file100"_s, u"File20"_s), 0);
    EXPECT_EQ(numericCompare(u"ABC"_s, u"abc"_s), 0);
    EXPECT_EQ(numericCompare(u"a007"_s, u"a7"_s), 0);
    EXPECT_LT(numericCompare(u"a"_s, u"ab"_s), 0);
    // Digit runs longer than any integer type still compare correctly.
    EXPECT_LT(numericCompare(u"x99999999999999999999999"_s, u"x100000000000000000000000"_s), 0);
}

TEST(Strings, FirstFoundStringFollowsArrayOrderNotPosition)
{
    const QString text = u"Adobe InDesign 2024 (CC)"_s;
    FoundRange r = rangeOfFirstFoundStringFromArray(text, {u"2024"_s, u"Adobe"_s});
    EXPECT_EQ(r.location, 15);
    EXPECT_EQ(r.length, 4);
    EXPECT_FALSE(rangeOfFirstFoundStringFromArray(text, {u"indesign"_s}).found());
    EXPECT_TRUE(rangeOfFirstFoundStringFromArray(text, {u"indesign"_s}, Qt::CaseInsensitive).found());
    EXPECT_FALSE(rangeOfFirstFoundStringFromArray(text, {}).found());
}

TEST(Strings, PathExtensionIsReplacedOrAdded)
{
    EXPECT_EQ(stringByReplacingPathExtensionWith(u"/a/Doc.indd"_s, u"idml"_s), u"/a/Doc.idml"_s);
    EXPECT_EQ(stringByReplacingPathExtensionWith(u"/a/Doc"_s, u"pdf"_s), u"/a/Doc.pdf"_s);
    EXPECT_EQ(stringByReplacingPathExtensionWith(u"/a.b/Doc"_s, u"pdf"_s), u"/a.b/Doc.pdf"_s);
    EXPECT_EQ(stringByReplacingPathExtensionWith(u"/a/.hidden"_s, u"txt"_s), u"/a/.hidden.txt"_s);
    EXPECT_EQ(stringByReplacingPathExtensionWith(u"Doc.v2.indd"_s, u"idml"_s), u"Doc.v2.idml"_s);
}

TEST(Strings, EscapingPutsBackslashBeforeEachGivenCharacter)
{
    EXPECT_EQ(stringByEscapingCharacters(u"My \"big\" doc"_s, {u"\""_s}), u"My \\\"big\\\" doc"_s);
    EXPECT_EQ(stringByEscapingCharacters(u"a\\b\"c"_s, {u"\\"_s, u"\""_s}), u"a\\\\b\\\"c"_s);
}
