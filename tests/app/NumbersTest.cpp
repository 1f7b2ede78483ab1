#include "app/Numbers.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

using namespace quillon::app;

TEST(NumberPatterns, DropTrailingZerosAndRoundHalfToEvenOnShortestForm)
{
    EXPECT_EQ(formatDecimal(2.675, 2), u"2.68"_s);
    EXPECT_EQ(formatDecimal(2.665, 2), u"2.66"_s);
    EXPECT_EQ(formatDecimal(0.125, 2), u"0.12"_s);
    EXPECT_EQ(formatDecimal(0.5, 0), u"0"_s);
    EXPECT_EQ(formatDecimal(1.5, 0), u"2"_s);
    EXPECT_EQ(formatDecimal(2.5, 0), u"2"_s);
    EXPECT_EQ(formatDecimal(2.51, 0), u"3"_s);
    EXPECT_EQ(formatDecimal(99.95, 1), u"100"_s);
    EXPECT_EQ(formatDecimal(9.99996, 4), u"10"_s);
    EXPECT_EQ(formatDecimal(100.0, 1), u"100"_s);
    EXPECT_EQ(formatDecimal(612, 4), u"612"_s);
    EXPECT_EQ(formatDecimal(595.2756, 4), u"595.2756"_s);
    EXPECT_EQ(formatDecimal(841.889763779528, 4), u"841.8898"_s);
    EXPECT_EQ(formatDecimal(1234567.0, 2), u"1234567"_s);
}

TEST(NumberPatterns, SignsAndSpecialValues)
{
    EXPECT_EQ(formatDecimal(-3.14159, 2), u"-3.14"_s);
    EXPECT_EQ(formatDecimal(-0.004, 2), u"0"_s);
    EXPECT_EQ(formatDecimal(-0.0, 1), u"0"_s);
    EXPECT_EQ(formatDecimal(1e-7, 4), u"0"_s);
    EXPECT_EQ(formatDecimal(1e20, 0), u"100000000000000000000"_s);
    EXPECT_EQ(formatDecimal(std::numeric_limits<double>::quiet_NaN(), 2), u"NaN"_s);
}

TEST(FileSizes, DecimalStyleOfFileManagers)
{
    EXPECT_EQ(fileSizeStrFromBytes(0), u"Zero KB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(1), u"1 byte"_s);
    EXPECT_EQ(fileSizeStrFromBytes(2), u"2 bytes"_s);
    EXPECT_EQ(fileSizeStrFromBytes(999), u"999 bytes"_s);
    EXPECT_EQ(fileSizeStrFromBytes(1000), u"1 KB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(1499), u"1 KB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(27644), u"28 KB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(999499), u"999 KB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(999999), u"1 MB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(1000000), u"1 MB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(1440000), u"1.4 MB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(1551000), u"1.6 MB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(1250000000), u"1.25 GB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(3000000000), u"3 GB"_s);
    EXPECT_EQ(fileSizeStrFromBytes(2500000000000ULL), u"2.5 TB"_s);
}

TEST(RandomNumbers, ExactDigitCountWithoutLeadingZeros)
{
    bool sawSmallDigit = false;
    for (int i = 0; i < 500; ++i) {
        const QString one = randomNumberOfLength(1);
        ASSERT_EQ(one.size(), 1);
        sawSmallDigit = sawSmallDigit || one.toInt() < 5;
        const QString five = randomNumberOfLength(5);
        ASSERT_EQ(five.size(), 5);
        ASSERT_GE(five.toInt(), 10000);
        ASSERT_GE(randomNumberOfLength(4).toInt(), 1000);
    }
    EXPECT_TRUE(sawSmallDigit);
}
