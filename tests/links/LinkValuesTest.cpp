#include "links/LinkValues.h"
#include "links/LinkRecordKeys.h"

#include <QTimeZone>

#include "support/QtPrinters.h"

#include <gtest/gtest.h>

using namespace quillon::links;

TEST(LinkValues, SizesAndIdsReadAsHexadecimalWithTheirPrefixDropped)
{
    EXPECT_EQ(sizeBytesFromString(QStringLiteral("0~2bf20")), 180000U);
    // 4 GiB and more keep their low 32 bits, as the stored format always did.
    EXPECT_EQ(sizeBytesFromString(QStringLiteral("0~100000005")), 5U);
    EXPECT_EQ(sizeBytesFromString(QString()), 0U);
    EXPECT_EQ(sizeBytesFromString(QStringLiteral("0~zz")), 0U);

    EXPECT_EQ(idStringFromHexString(QStringLiteral("u1a3")), QStringLiteral("419"));
    EXPECT_EQ(idStringFromHexString(QStringLiteral("uFF")), QStringLiteral("255"));
    EXPECT_EQ(idStringFromHexString(QString()), QStringLiteral("0"));
}

TEST(LinkValues, FileSizeFormatUsesDecimalUnitsWithItsBoundaries)
{
    EXPECT_EQ(fileSizeFormat(0), QStringLiteral("1 KB"));
    EXPECT_EQ(fileSizeFormat(1999), QStringLiteral("1 KB"));
    EXPECT_EQ(fileSizeFormat(1'000'000), QStringLiteral("1000 KB"));
    EXPECT_EQ(fileSizeFormat(1'000'001), QStringLiteral("1 MB"));
    EXPECT_EQ(fileSizeFormat(1'550'000), QStringLiteral("1.6 MB"));
    EXPECT_EQ(fileSizeFormat(1'000'000'000), QStringLiteral("1 GB"));
    EXPECT_EQ(fileSizeFormat(4'294'967'295ULL), QStringLiteral("4.29 GB"));
}

TEST(LinkValues, KindComesFromTheFormatTextOrElseFromTheExtension)
{
    EXPECT_EQ(fileKindFromString(QStringLiteral("Adobe Portable Document Format (PDF)"), {}), kLinkKindPDF);
    EXPECT_EQ(fileKindFromString(QStringLiteral("Photoshop"), QStringLiteral("/a/b.tif")), kLinkKindPhotoshop);
    EXPECT_EQ(fileKindFromString(QStringLiteral("InDesign Format Name"), {}), QStringLiteral("InDesign Format Name"));
    EXPECT_EQ(fileKindFromString({}, QStringLiteral("/a/b.tif")), kLinkKindTIFF);
    EXPECT_EQ(fileKindFromString({}, QStringLiteral("/a/b.ai")), kLinkKindPDFFromAI);
    // Extensions compare exactly: upper case and the long forms are not in the table.
    EXPECT_EQ(fileKindFromString({}, QStringLiteral("/a/b.TIF")), kLinkKindUnknown);
    EXPECT_EQ(fileKindFromString({}, QStringLiteral("/a/b.jpeg")), kLinkKindUnknown);
    EXPECT_EQ(fileKindFromString({}, QStringLiteral("/a.eps/b")), kLinkKindUnknown);
}

TEST(LinkValues, ScaleIsTheLengthOfEachAxisSoRotationKeepsIt)
{
    const auto half = scaleValuesFromTransformStr(QStringLiteral("0.5 0 0 0.5 0 0"));
    EXPECT_EQ(half.scale, QStringLiteral("50"));
    EXPECT_EQ(half.horScale, QStringLiteral("50"));
    const auto unequal = scaleValuesFromTransformStr(QStringLiteral("0.5 0 0 0.25 0 0"));
    EXPECT_EQ(unequal.scale, QStringLiteral("50x25"));
    EXPECT_EQ(unequal.vertScale, QStringLiteral("25"));
    EXPECT_EQ(scaleValuesFromTransformStr(QStringLiteral("0 1 -1 0 0 0")).scale, QStringLiteral("100"));
    EXPECT_EQ(scaleValuesFromTransformStr(QStringLiteral("-0.625 0 0 0.625 12 4")).scale, QStringLiteral("62.5"));
    EXPECT_EQ(scaleValuesFromTransformStr(QString()).scale, QStringLiteral("0"));
    EXPECT_EQ(scaleValuesFromTransformStr(QStringLiteral("junk 1")).scale, QStringLiteral("100x0"));
}

TEST(LinkValues, ColourSpacesMapAndOnlyKeptOnesMayComeFromTheFile)
{
    const auto check = [](const char* space, const char* text, bool remapped) {
        const LinkColor color = colorFromSpace(QString::fromUtf8(space));
        EXPECT_EQ(color.text, QString::fromUtf8(text)) << space;
        EXPECT_EQ(color.remapped, remapped) << space;
    };
    check("$ID/#Links_CMYK", "CMYK", false);
    check("", "", false);
    check("$ID/#Links_Indexed RGB", "RGB", true);
    check("$ID/kLinksPanelCMYKWithSpot", "CMYK + Spot", true);
    check("$ID/#Links_LAB", "   -", true);
}

TEST(LinkValues, AnHourIsToleratedOnlyWhenTheFileIsOlder)
{
    const qint64 link = QDateTime(QDate(2024, 3, 1), QTime(10, 0, 0), Qt::UTC).toMSecsSinceEpoch();
    EXPECT_EQ(statusFromDates(link, link - 3600000), kLinkStatusOK);
    EXPECT_EQ(statusFromDates(link, link + 3600000), kLinkStatusModified);
    EXPECT_EQ(statusFromDates(link, link + 1000), kLinkStatusModified);
    EXPECT_EQ(statusFromDates(link, link - 3601000), kLinkStatusModified);
}

TEST(LinkValues, TheImportStampIsUtcAndTheModificationTimeIsLocal)
{
    // 129276405430000000 hundred-nanosecond ticks since 1601 is 2010-08-30 11:15:43 UTC.
    const auto stamped = linkDateFromAttributes(QStringLiteral("2010-08-30T09:00:00"),
                                                QStringLiteral("file 129276405430000000 8925588"));
    ASSERT_TRUE(stamped);
    EXPECT_EQ(stamped->toUTC(), QDateTime(QDate(2010, 8, 30), QTime(11, 15, 43), Qt::UTC));

    const auto local = linkDateFromAttributes(QStringLiteral("2010-08-30T09:00:00"), QString());
    ASSERT_TRUE(local);
    EXPECT_EQ(*local, QDateTime(QDate(2010, 8, 30), QTime(9, 0, 0), Qt::LocalTime));

    // A stamp of another scheme or a broken one falls back to the modification time.
    EXPECT_EQ(*linkDateFromAttributes(QStringLiteral("2010-08-30T09:00:00"), QStringLiteral("url 12 3")), *local);
    EXPECT_EQ(*linkDateFromAttributes(QStringLiteral("2010-08-30T09:00:00"), QStringLiteral("file x 3")), *local);
    EXPECT_EQ(*linkDateFromAttributes(QStringLiteral("2010-08-30 09:00:00"), QString()), *local);
    EXPECT_FALSE(linkDateFromAttributes(QStringLiteral("yesterday"), QString()));
    EXPECT_FALSE(linkDateFromAttributes(QStringLiteral("2010-02-30T09:00:00"), QString()));
    EXPECT_FALSE(linkDateFromAttributes(QStringLiteral("2010-08-30T09:00:00Z"), QString()));
    EXPECT_FALSE(linkDateFromAttributes(QString(), QString()));
}
