#include "fileinspect/QNPreflightMethods.h"

#include "Fixtures.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::fileinspect;
using quillon::test::be16;
using quillon::test::be32;
using quillon::test::descProfile;
using quillon::test::psdFile;
using quillon::test::psdResource;
using quillon::test::samplePath;

namespace {

QString profileOf(const QByteArray& psd)
{
    QNPreflightMethods reader;
    return reader.psdPropsFromData(ByteSource::fromBytes(psd)).value(0);
}

} // namespace

TEST(PhotoshopReader, ProfileNamesOfRealFiles)
{
    const QList<std::pair<const char*, const char*>> expected{
        {"psd/4x4_8bit_cmyk.psd", "Japan Color 2001 Coated"},
        {"psd/4x4_8bit_grayscale.psd", "Dot Gain 15%"},
        {"psd/4x4_8bit_index_color.psd", "sRGB IEC61966-2.1"},
        {"psd/north_america_newspaper.psd", "Adobe RGB (1998)"},
        {"psd/Photoshop.psd", "Apple RGB"},
        // 38 characters, cut at 26.
        {"psd/4x4_32bit_rgb.psd", "sRGB IEC61966-2.1 (Linear "},
        // A version 4 profile has no second "desc": the name comes from the image properties.
        {"psd/five_channels.psd", "GIMP built-in sRGB"},
        {"psd/4x4_8bit_duotone.psd", ""},
        {"psd/1layer.psb", ""},
    };
    QNPreflightMethods reader;
    for (const auto& [file, profile] : expected) {
        const QStringList props = reader.psdPropsFromData(samplePath(QString::fromLatin1(file)));
        ASSERT_EQ(props.size(), 1) << file;
        EXPECT_EQ(props.first(), QString::fromLatin1(profile)) << file;
    }
}

TEST(PhotoshopReader, OddSizedResourcesAreFoundBySignatureNotByRounding)
{
    const QByteArray profile = descProfile("Test RGB");
    // Padded as the format wants: the reader lands on the padding byte and finds "8BIM" again.
    EXPECT_EQ(profileOf(psdFile(3, {}, {psdResource(1028, "odd"), psdResource(1039, profile)})), u"Test RGB");
    // Written without padding: a reader rounding sizes up would miss the next signature.
    EXPECT_EQ(profileOf(psdFile(3, {}, {psdResource(1028, "odd", false), psdResource(1039, profile)})), u"Test RGB");
    // Several odd resources in a row, and colour-mode data before them.
    EXPECT_EQ(profileOf(psdFile(2, QByteArray(768, '\x7f'),
                                {psdResource(1000, "a"), psdResource(1001, "abc", false), psdResource(1002, "xyzzy"),
                                 psdResource(1039, profile), psdResource(1044, "tail")})),
              u"Test RGB");
}

TEST(PhotoshopReader, ResourcesThatCannotBeFollowedEndTheSearch)
{
    const QByteArray profile = descProfile("Test RGB");
    // Sixty bytes of garbage hide the next signature from the 50-byte window.
    const QByteArray garbage(60, 'x');
    QByteArray psd = psdFile(3, {}, {psdResource(1028, "data"), garbage, psdResource(1039, profile)});
    EXPECT_EQ(profileOf(psd), u"");
    // Truncated in the middle of the resources, and a section length far beyond the file.
    QByteArray truncated = psdFile(3, {}, {psdResource(1028, "data"), psdResource(1039, profile)});
    truncated.truncate(60);
    EXPECT_EQ(profileOf(truncated), u"");
    QByteArray overlong = "8BPS" + QByteArray(22, '\0') + be32(0) + be32(0xFFFFFFF0u) + "8BIM";
    EXPECT_EQ(profileOf(overlong), u"");
    EXPECT_EQ(profileOf(QByteArray()), u"");
}

TEST(PhotoshopReader, ProfileNameIsAlwaysTwentySixBytes)
{
    QNPreflightMethods reader;
    const ByteSource noFile;
    // A shorter name keeps the bytes after it; only the NUL padding goes.
    EXPECT_EQ(reader.profileName(descProfile("Dot Gain 15%", QByteArray("\0abcdefghijklmnopqrst", 21)), noFile),
              u"Dot Gain 15%abcdefghijklm");
}

TEST(PhotoshopReader, ProfileWithoutDescriptionFallsBackToImageProperties)
{
    QNPreflightMethods reader;
    // No second "desc" and no file to fall back to: nothing.
    EXPECT_EQ(reader.profileName(QByteArray("....desc....mluc....", 20), ByteSource()), u"");
    EXPECT_EQ(reader.profileName(QByteArray(), ByteSource()), u"");
    // The fallback reads the file's own profile with the colour library.
    const ByteSource gimp = ByteSource::openFile(samplePath("psd/five_channels.psd"));
    EXPECT_EQ(reader.profileName(QByteArray("desc", 4), gimp), u"GIMP built-in sRGB");
    EXPECT_EQ(reader.profName(), u"GIMP built-in sRGB");
}

TEST(PhotoshopReader, DuotoneInks)
{
    QNPreflightMethods reader;
    EXPECT_EQ(reader.psdDuotoneColors(samplePath("psd/4x4_8bit_duotone.psd")), u"Black\r\nPANTONE 327 CVC");

    auto duotone = [](const QList<QByteArray>& inks) {
        QByteArray modeData(524, '\0');
        for (int i = 0; i < inks.size(); ++i)
            modeData.replace(45 + 64 * i, inks[i].size(), inks[i]);
        return ByteSource::fromBytes(psdFile(8, modeData, {}));
    };
    EXPECT_EQ(reader.psdDuotoneColors(duotone({"PANTONE 185 C"})), u"PANTONE 185 C");
    EXPECT_EQ(reader.psdDuotoneColors(duotone({"Cyan", "Magenta", "Yellow", "Black"})),
              u"Cyan\r\nMagenta\r\nYellow\r\nBlack");
    // The first empty field ends the list.
    EXPECT_EQ(reader.psdDuotoneColors(duotone({"Black", "", "Orange"})), u"Black");
    // No bytes at all: the first ink does not decode.
    EXPECT_EQ(reader.psdDuotoneColors(samplePath("psd/no such file.psd")), u"?");
}

TEST(PhotoshopReader, ResolutionOfOldFiles)
{
    QNPreflightMethods reader;
    QByteArray head = QByteArray(100, ' ') + "Resolution" + QByteArray(5, '\0') + be16(300);
    EXPECT_EQ(reader.resOfOldPSD(ByteSource::fromBytes(head)), 300);
    EXPECT_EQ(reader.resOfOldPSD(ByteSource::fromBytes(QByteArray(2000, 'x'))), 0);
    // The word beyond the first 1000 bytes is not looked for.
    EXPECT_EQ(reader.resOfOldPSD(ByteSource::fromBytes(QByteArray(1000, ' ') + head)), 0);
}

TEST(PhotoshopReader, AlphaChannelNames)
{
    auto unicode = [](const QString& name) {
        QByteArray bytes = be32(quint32(name.size()));
        for (QChar c : name)
            bytes += be16(c.unicode());
        return bytes;
    };
    EXPECT_EQ(QNPreflightMethods::alphaNames(unicode(u"Alpha 1"_s) + unicode(u"Maske ä"_s)),
              QStringList({u"Alpha 1"_s, u"Maske ä"_s}));
    // Cut short to an odd byte count it is no UTF-16: 7-bit text is read as ASCII, UTF-8 as such,
    // anything else as "<unknown>".
    EXPECT_EQ(QNPreflightMethods::alphaNames(be32(2) + "abc"), QStringList{u"abc"_s});
    EXPECT_EQ(QNPreflightMethods::alphaNames(be32(2) + "\xc3\xa4x"), QStringList{u"äx"_s});
    EXPECT_EQ(QNPreflightMethods::alphaNames(be32(2) + "\xff\xfe\xfd"), QStringList{u"<unknown>"_s});
    EXPECT_TRUE(QNPreflightMethods::alphaNames({}).isEmpty());
}

TEST(PhotoshopReader, SmallUtilities)
{
    EXPECT_EQ(QNPreflightMethods::intFromHex(QByteArray("\x00\x00\x04\x0f", 4)), 1039u);
    EXPECT_EQ(QNPreflightMethods::intFromHex(QByteArray("\xff\xff\xff\xff\x01", 5)), 0xFFFFFFFFu);
    EXPECT_EQ(QNPreflightMethods::intFromHex({}), 0u);

    EXPECT_EQ(QNPreflightMethods::fileSize(1024), u"1024 bytes");
    EXPECT_EQ(QNPreflightMethods::fileSize(1025), u"1 KB");
    EXPECT_EQ(QNPreflightMethods::fileSize(1572864), u"1.5 MB");
    EXPECT_EQ(QNPreflightMethods::fileSize(2415919104.0), u"2.25 GB");

    EXPECT_EQ(QNPreflightMethods::finalScaleHor(-50, 50), u"50");
    EXPECT_EQ(QNPreflightMethods::finalScaleHor(62.54, 62.5), u"62.5");
    EXPECT_EQ(QNPreflightMethods::finalScaleHor(50, -25), u"50x25");

    EXPECT_EQ(QNPreflightMethods::duotoneRes(u"72"_s, u"300"_s, u"50"_s), QStringList({u"300"_s, u"600"_s}));
    EXPECT_EQ(QNPreflightMethods::duotoneRes(u"144"_s, u"301"_s, u"62,5"_s), QStringList({u"150"_s, u"240"_s}));
    // Nothing to divide by: whole numbers all the same, never undefined behaviour.
    EXPECT_EQ(QNPreflightMethods::duotoneRes(u"0"_s, u"300"_s, u"0"_s), QStringList({u"0"_s, u"0"_s}));
}
