#include "app/NumericText.h"
#include "app/PathComponents.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace quillon::app {
namespace {

TEST(NumericText, IntegersFromTheStartOfTheText)
{
    EXPECT_EQ(intValueOfText(u"300"), 300);
    EXPECT_EQ(intValueOfText(u"  62.5"), 62);
    EXPECT_EQ(intValueOfText(u"-12dpi"), -12);
    EXPECT_EQ(intValueOfText(u"+7"), 7);
    EXPECT_EQ(intValueOfText(u"-"), 0);
    EXPECT_EQ(intValueOfText(u""), 0);
    EXPECT_EQ(intValueOfText(u"x12"), 0);
    EXPECT_EQ(intValueOfText(u"99999999999999999999"), std::numeric_limits<int>::max());
    EXPECT_EQ(intValueOfText(u"-99999999999999999999"), std::numeric_limits<int>::min());
}

TEST(NumericText, FloatsInSinglePrecision)
{
    EXPECT_EQ(floatValueOfText(u"1.5"), 1.5f);
    EXPECT_EQ(floatValueOfText(u"0.1"), 0.1f);
    EXPECT_EQ(floatValueOfText(u".5MB"), 0.5f);
    EXPECT_EQ(floatValueOfText(u"2e3"), 2000.0f);
    EXPECT_EQ(floatValueOfText(u"2e"), 2.0f);
    EXPECT_EQ(floatValueOfText(u"-3"), -3.0f);
    EXPECT_EQ(floatValueOfText(u"."), 0.0f);
    EXPECT_EQ(floatValueOfText(u"abc"), 0.0f);
    EXPECT_EQ(floatValueOfText(u"1e99"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(floatValueOfText(u"1e-99"), 0.0f);
}

TEST(NumericText, IntegersFromRecordValues)
{
    EXPECT_EQ(intValueOf(QVariant(u"450"_s)), 450);
    EXPECT_EQ(intValueOf(QVariant(true)), 1);
    EXPECT_EQ(intValueOf(QVariant(62.9)), 62);
    EXPECT_EQ(intValueOf(QVariant(-1e12)), std::numeric_limits<int>::min());
    // Wider integers keep their low 32 bits, as a C conversion does.
    EXPECT_EQ(intValueOf(QVariant::fromValue<quint64>(3221225472ULL)), -1073741824);
    EXPECT_EQ(intValueOf(QVariant::fromValue<qint64>(4294967296LL + 5)), 5);
    EXPECT_EQ(intValueOf(QVariant()), 0);
    EXPECT_EQ(intValueOf(QVariant(QVariantList{1})), 0);
}

TEST(PathComponents, ExtensionsAsTheDesktopReadsThem)
{
    EXPECT_EQ(pathExtension(u"/a/photo.tif"_s), u"tif"_s);
    EXPECT_EQ(pathExtension(u"archive.tar.gz"_s), u"gz"_s);
    EXPECT_EQ(pathExtension(u".profile"_s), QString());
    EXPECT_EQ(pathExtension(u"/a.b/photo"_s), QString());
    EXPECT_EQ(pathExtension(u"photo."_s), QString());
    EXPECT_EQ(stringByDeletingPathExtension(u"/x/Print.qnfp"_s), u"/x/Print"_s);
    EXPECT_EQ(stringByDeletingPathExtension(u"/x.y/Print"_s), u"/x.y/Print"_s);
    EXPECT_EQ(lastPathComponent(u"/jobs/a.indd"_s), u"a.indd"_s);
    EXPECT_EQ(lastPathComponent(u"/jobs/"_s), u"jobs"_s);
    EXPECT_EQ(lastPathComponent(u"/"_s), u"/"_s);
    EXPECT_EQ(lastPathComponent(u"name"_s), u"name"_s);
}

} // namespace
} // namespace quillon::app

TEST(NumericText, DoublesFromTheFrontOfAText)
{
    using namespace quillon::app;
    EXPECT_EQ(doubleValueOfText(u"12.5mm"), 12.5);
    EXPECT_EQ(doubleValueOfText(u"  -3e2 and more"), -300.0);
    EXPECT_EQ(doubleValueOfText(u".5"), 0.5);
    EXPECT_EQ(doubleValueOfText(u"abc"), 0.0);
    EXPECT_EQ(doubleValueOfText(u"1e400"), std::numeric_limits<double>::infinity());
}
