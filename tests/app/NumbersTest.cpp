#include "app/Numbers.h"

#include <gtest/gtest.h>

#include <limits>

using namespace quillon::app;

TEST(NumberPatterns, DropTrailingZerosAndRoundHalfToEvenOnShortestForm)
{
    EXPECT_EQ(formatDecimal(2.675, 2), QStringLiteral("2.68"));
    EXPECT_EQ(formatDecimal(2.665, 2), QStringLiteral("2.66"));
    EXPECT_EQ(formatDecimal(0.125, 2), QStringLiteral("0.12"));
    EXPECT_EQ(formatDecimal(0.5, 0), QStringLiteral("0"));
    EXPECT_EQ(formatDecimal(1.5, 0), QStringLiteral("2"));
    EXPECT_EQ(formatDecimal(2.5, 0), QStringLiteral("2"));
    EXPECT_EQ(formatDecimal(2.51, 0), QStringLiteral("3"));
    EXPECT_EQ(formatDecimal(99.95, 1), QStringLiteral("100"));
    EXPECT_EQ(formatDecimal(9.99996, 4), QStringLiteral("10"));
    EXPECT_EQ(formatDecimal(100.0, 1), QStringLiteral("100"));
    EXPECT_EQ(formatDecimal(612, 4), QStringLiteral("612"));
    EXPECT_EQ(formatDecimal(595.2756, 4), QStringLiteral("595.2756"));
    EXPECT_EQ(formatDecimal(841.889763779528, 4), QStringLiteral("841.8898"));
    EXPECT_EQ(formatDecimal(1234567.0, 2), QStringLiteral("1234567"));
}

TEST(NumberPatterns, SignsAndSpecialValues)
{
    EXPECT_EQ(formatDecimal(-3.14159, 2), QStringLiteral("-3.14"));
    EXPECT_EQ(formatDecimal(-0.004, 2), QStringLiteral("0"));
    EXPECT_EQ(formatDecimal(-0.0, 1), QStringLiteral("0"));
    EXPECT_EQ(formatDecimal(1e-7, 4), QStringLiteral("0"));
    EXPECT_EQ(formatDecimal(1e20, 0), QStringLiteral("100000000000000000000"));
    EXPECT_EQ(formatDecimal(std::numeric_limits<double>::quiet_NaN(), 2), QStringLiteral("NaN"));
}

TEST(NumberPatterns, PatternTextGivesTheDecimals)
{
    EXPECT_EQ(formatWithPattern(12.3456, QStringLiteral("###0")), QStringLiteral("12"));
    EXPECT_EQ(formatWithPattern(12.3456, QStringLiteral("###0.#")), QStringLiteral("12.3"));
    EXPECT_EQ(formatWithPattern(12.3456, QStringLiteral("###0.##")), QStringLiteral("12.35"));
    EXPECT_EQ(formatWithPattern(12.34564, QStringLiteral("###0.####")), QStringLiteral("12.3456"));
}

TEST(FileSizes, DecimalStyleOfFileManagers)
{
    EXPECT_EQ(fileSizeStrFromBytes(0), QStringLiteral("Zero KB"));
    EXPECT_EQ(fileSizeStrFromBytes(1), QStringLiteral("1 byte"));
    EXPECT_EQ(fileSizeStrFromBytes(2), QStringLiteral("2 bytes"));
    EXPECT_EQ(fileSizeStrFromBytes(999), QStringLiteral("999 bytes"));
    EXPECT_EQ(fileSizeStrFromBytes(1000), QStringLiteral("1 KB"));
    EXPECT_EQ(fileSizeStrFromBytes(1499), QStringLiteral("1 KB"));
    EXPECT_EQ(fileSizeStrFromBytes(27644), QStringLiteral("28 KB"));
    EXPECT_EQ(fileSizeStrFromBytes(999499), QStringLiteral("999 KB"));
    EXPECT_EQ(fileSizeStrFromBytes(999999), QStringLiteral("1 MB"));
    EXPECT_EQ(fileSizeStrFromBytes(1000000), QStringLiteral("1 MB"));
    EXPECT_EQ(fileSizeStrFromBytes(1440000), QStringLiteral("1.4 MB"));
    EXPECT_EQ(fileSizeStrFromBytes(1551000), QStringLiteral("1.6 MB"));
    EXPECT_EQ(fileSizeStrFromBytes(1250000000), QStringLiteral("1.25 GB"));
    EXPECT_EQ(fileSizeStrFromBytes(3000000000), QStringLiteral("3 GB"));
    EXPECT_EQ(fileSizeStrFromBytes(2500000000000ULL), QStringLiteral("2.5 TB"));
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
