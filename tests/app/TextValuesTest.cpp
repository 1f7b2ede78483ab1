#include "app/TextValues.h"

#include <gtest/gtest.h>

using namespace quillon::app;

TEST(TextValues, NumbersFromTheFrontOfATextLikeThePlatform)
{
    EXPECT_EQ(doubleValue(u"12.5mm"), 12.5);
    EXPECT_EQ(doubleValue(u"  -3e2 and more"), -300.0);
    EXPECT_EQ(doubleValue(u".5"), 0.5);
    EXPECT_EQ(doubleValue(u"2e"), 2.0);
    EXPECT_EQ(doubleValue(u"abc"), 0.0);
    EXPECT_EQ(doubleValue(u"-"), 0.0);

    EXPECT_EQ(intValue(u"17.9"), 17);
    EXPECT_EQ(intValue(u" 8.0"), 8);
    EXPECT_EQ(intValue(u"+42x"), 42);
    EXPECT_EQ(intValue(u"-7"), -7);
    EXPECT_EQ(intValue(u"x1"), 0);
    EXPECT_EQ(intValue(u"99999999999"), 2147483647);
    EXPECT_EQ(intValue(u"-99999999999"), -2147483647 - 1);
}
