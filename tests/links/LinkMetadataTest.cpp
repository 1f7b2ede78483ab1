#include "FakeLinkedFileReader.h"

#include "links/LinkMetadata.h"
#include "links/LinkRecordKeys.h"

#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QUrl>

#include "support/QtPrinters.h"

#include <gtest/gtest.h>

using namespace quillon::links;

namespace {

std::string packet(const std::string& namespaces, const std::string& body)
{
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
           "<rdf:Description rdf:about=\"\" " +
           namespaces + ">" + body + "</rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end=\"r\"?>";
}

std::string plates(std::initializer_list<const char*> names)
{
    std::string body = "<xmpTPg:PlateNames><rdf:Seq>";
    for (const char* name : names)
        body += std::string("<rdf:li>") + name + "</rdf:li>";
    return body + "</rdf:Seq></xmpTPg:PlateNames>";
}

struct Fixture {
    QVariantMap record;
    quillon::test::FakeLinkedFileReader reader;

    bool read(const std::string& text, const QString& kind, bool exists = false, const QString& path = {})
    {
        record.insert(kLinkKindKey, kind);
        LinkMetadata metadata(record, path, exists, reader, nullptr);
        return metadata.iccProfileAndMoreFromMetadataStr(
            text, kind == QLatin1String("TIFF"), kind == QLatin1String("EPS"), kind.contains(QLatin1String("ai")),
            kind.contains(QLatin1String("InDesign")));
    }
};

} // namespace

TEST(LinkMetadata, IllustratorPlatesGiveSpotColoursOrGrayscale)
{
    Fixture onlyBlack;
    EXPECT_TRUE(onlyBlack.read(packet("", plates({"Black"})), kLinkKindPDFFromAI));
    EXPECT_EQ(onlyBlack.record.value(kLinkColorKey), QStringLiteral("Grayscale"));
    EXPECT_FALSE(onlyBlack.record.contains(kLinkEpsColListKey));

    Fixture spot;
    spot.read(packet("", plates({"Cyan", "Magenta", "Yellow", "Black", "PANTONE 185 C"})), kLinkKindPDFFromAI);
    EXPECT_EQ(spot.record.value(kLinkEpsColsKey), QVariant(1));
    EXPECT_EQ(spot.record.value(kLinkEpsColListKey), QStringLiteral("PANTONE 185 C"));

    Fixture process;
    process.read(packet("", plates({"Cyan", "Black"})), kLinkKindPDFFromAI);
    EXPECT_FALSE(process.record.contains(kLinkEpsColsKey));
    EXPECT_FALSE(process.record.contains(kLinkColorKey));
}

TEST(LinkMetadata, IllustratorFontsAreAListAndACountNumber)
{
    Fixture fixture;
    fixture.read(packet("", "<xmpTPg:Fonts><rdf:Bag><rdf:li><stFnt:fontName>MyriadPro-Regular</stFnt:fontName></rdf:li>"
                            "<rdf:li><stFnt:fontName>ApexNew-Book</stFnt:fontName></rdf:li></rdf:Bag></xmpTPg:Fonts>" +
                                plates({"PANTONE 1 C", "PANTONE 2 C"})),
                 QStringLiteral("PDF (.ai)"));
    EXPECT_EQ(fixture.record.value(kLinkEpsFontListKey), QStringLiteral("MyriadPro-Regular\rApexNew-Book"));
    EXPECT_EQ(fixture.record.value(kLinkEpsFontsKey), QVariant(2));
    EXPECT_EQ(fixture.record.value(kLinkEpsColListKey), QStringLiteral("PANTONE 1 C\rPANTONE 2 C"));
}

TEST(LinkMetadata, IllustratorWithoutPlatesFallsBackToThePostScriptHead)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("old.ai"));
    quillon::test::writeAll(path, "%!PS-Adobe-3.0\r%%DocumentCustomColors: (PANTONE 300 C)\r%%+ (Gold)\r"
                                  "%%CMYKCustomColor: 1 0 0 0 (PANTONE 300 C)\r");
    Fixture fixture;
    fixture.reader.preCS3 = {QString(), QStringLiteral("Helvetica\nTimes-Roman")};
    fixture.read(packet("", ""), kLinkKindPDFFromAI, true, path);
    EXPECT_EQ(fixture.record.value(kLinkEpsFontsKey), QStringLiteral("2"));
    EXPECT_EQ(fixture.record.value(kLinkEpsFontListKey), QStringLiteral("Helvetica\nTimes-Roman"));
    EXPECT_EQ(fixture.record.value(kLinkEpsColsKey), QStringLiteral("2"));
    EXPECT_EQ(fixture.record.value(kLinkEpsColListKey), QStringLiteral("PANTONE 300 C\rGold"));

    // A file that carries its own XMP said all there is: the head is not searched.
    quillon::test::writeAll(path,
                            "%PDF-1.5 <</Subtype/XML/Type/Metadata>> %%DocumentCustomColors: (X)\r%%CMYKCustomColor");
    Fixture xmp;
    xmp.reader.preCS3 = {QString(), QStringLiteral("Helvetica")};
    xmp.read(packet("", ""), kLinkKindPDFFromAI, true, path);
    EXPECT_FALSE(xmp.record.contains(kLinkEpsFontsKey));

    // Without the file there is nothing to read.
    Fixture missing;
    missing.reader.preCS3 = {QString(), QStringLiteral("Helvetica")};
    missing.read(packet("", ""), kLinkKindPDFFromAI, false, path);
    EXPECT_FALSE(missing.record.contains(kLinkEpsFontsKey));
}

TEST(LinkMetadata, TiffCompressionRenamesTheKindKeepingItsOddities)
{
    const auto kindFor = [](const char* code) {
        Fixture fixture;
        fixture.read(packet("", std::string("<tiff:Compression>") + code + "</tiff:Compression>"), kLinkKindTIFF);
        return fixture.record.value(kLinkKindKey).toString();
    };
    EXPECT_EQ(kindFor("5"), QStringLiteral("TIFF LZW"));
    EXPECT_EQ(kindFor("7"), QStringLiteral("TIFF JPEG"));
    EXPECT_EQ(kindFor("1"), QStringLiteral("TIFF "));
    EXPECT_EQ(kindFor("32773"), QStringLiteral("TIFF (null)"));
    EXPECT_EQ(kindFor(""), QStringLiteral("TIFF"));
}

TEST(LinkMetadata, ProfilesComeFromTheFirstDescriptionOnly)
{
    Fixture fixture;
    EXPECT_TRUE(
        fixture.read(packet("", "<photoshop:ICCProfile>sRGB IEC61966-2.1</photoshop:ICCProfile>"), kLinkKindJPEG));
    EXPECT_EQ(fixture.record.value(kLinkProfileKey), QStringLiteral("sRGB IEC61966-2.1"));

    Fixture second;
    const std::string twoDescriptions =
        "<x:xmpmeta><rdf:RDF><rdf:Description/><rdf:Description><photoshop:ICCProfile>Late</photoshop:ICCProfile>"
        "</rdf:Description></rdf:RDF></x:xmpmeta>";
    EXPECT_TRUE(second.read(twoDescriptions, kLinkKindJPEG));
    EXPECT_FALSE(second.record.contains(kLinkProfileKey));
}

TEST(LinkMetadata, EpsResolutionAndBitmapModeFromThePacket)
{
    Fixture fixture;
    fixture.record.insert(kLinkHorScaleKey, QStringLiteral("50"));
    fixture.read(packet("", "<tiff:XResolution>3000000/10000</tiff:XResolution>"
                            "<photoshop:ColorMode>0</photoshop:ColorMode>"),
                 kLinkKindEPS);
    EXPECT_EQ(fixture.record.value(kLinkActualResKey), QStringLiteral("300"));
    EXPECT_EQ(fixture.record.value(kLinkEffectiveResKey), QStringLiteral("600"));
    EXPECT_EQ(fixture.record.value(kLinkColorKey), kLinkColorBlackAndWhite);

    EXPECT_EQ(LinkMetadata::resolutionFromMetadataEntry(QStringLiteral("72/1")), QStringLiteral("72"));
    EXPECT_EQ(LinkMetadata::resolutionFromMetadataEntry(QStringLiteral("2999/10")), QStringLiteral("300"));
    EXPECT_EQ(LinkMetadata::resolutionFromMetadataEntry(QStringLiteral("72/0")), QString());
}

TEST(LinkMetadata, NestedLinksOfAPlacedInDesignFile)
{
    QTemporaryDir dir;
    const QString present = dir.filePath(QStringLiteral("logo.psd"));
    quillon::test::writeAll(present, QByteArray(2500, 'x'));
    const std::string manifest = "<xmpMM:Manifest><rdf:Bag>"
                                 "<rdf:li><stMfs:reference><stRef:lastURL>file://" +
                                 QUrl::toPercentEncoding(present, "/").toStdString() +
                                 "</stRef:lastURL></stMfs:reference></rdf:li>"
                                 "<rdf:li><stMfs:reference><stRef:lastURL>file:///nowhere/gone%20away.tif</"
                                 "stRef:lastURL></stMfs:reference></rdf:li>"
                                 "</rdf:Bag></xmpMM:Manifest>";
    Fixture fixture;
    EXPECT_TRUE(fixture.read(packet("xmlns:stMfs=\"http://ns.adobe.com/xap/1.0/sType/ManifestItem#\"", manifest),
                             QStringLiteral("InDesign")));
    const QVariantList links = fixture.record.value(kLinkNestedLinksKey).toList();
    ASSERT_EQ(links.size(), 2);
    const QVariantMap first = links[0].toMap();
    EXPECT_EQ(first.value(kLinkPathKey), present);
    EXPECT_EQ(first.value(kLinkStatusKey), kLinkStatusOK);
    EXPECT_EQ(first.value(kLinkSizeKey), QStringLiteral("2 KB"));
    const QVariantMap second = links[1].toMap();
    EXPECT_EQ(second.value(kLinkPathKey), QStringLiteral("/nowhere/gone away.tif"));
    EXPECT_EQ(second.value(kLinkStatusKey), kLinkStatusMissing);
    EXPECT_EQ(second.value(kLinkSizeKey), QStringLiteral("-"));

    // Without the stMfs declaration the manifest is not read.
    Fixture undeclared;
    undeclared.read(packet("", manifest), QStringLiteral("InDesign"));
    EXPECT_FALSE(undeclared.record.contains(kLinkNestedLinksKey));
}

TEST(LinkMetadata, NestedLinksOfAnIllustratorFileUseFilePaths)
{
    const std::string manifest =
        "<xmpMM:Manifest><rdf:Seq><rdf:li><stMfs:reference><stRef:filePath>/x/a.bmp"
        "</stRef:filePath></stMfs:reference></rdf:li><rdf:li><stMfs:reference>"
        "<stRef:filePath></stRef:filePath></stMfs:reference></rdf:li></rdf:Seq></xmpMM:Manifest>";
    Fixture fixture;
    fixture.read(packet("xmlns:stMfs=\"m\"", manifest), kLinkKindPDFFromAI);
    const QVariantList links = fixture.record.value(kLinkNestedLinksKey).toList();
    ASSERT_EQ(links.size(), 1);
    EXPECT_EQ(links[0].toMap().value(kLinkNameKey), QStringLiteral("a.bmp"));
}

TEST(LinkMetadata, PacketsThatDoNotReadChangeNothing)
{
    Fixture fixture;
    EXPECT_FALSE(fixture.read("", kLinkKindJPEG));
    EXPECT_FALSE(fixture.read("<not xml", kLinkKindJPEG));
    EXPECT_FALSE(fixture.read("<x:xmpmeta><rdf:RDF/></x:xmpmeta>", kLinkKindJPEG));
    EXPECT_FALSE(fixture.read("<rdf:RDF><rdf:Description/></rdf:RDF>", kLinkKindJPEG));
    EXPECT_FALSE(fixture.read(
        "<!DOCTYPE x [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]><x:xmpmeta>&b;</x:xmpmeta>", kLinkKindJPEG));
    EXPECT_EQ(fixture.record.size(), 1);
}

TEST(LinkMetadata, CustomColoursNeedBothMarkersInOrder)
{
    const QString text = QStringLiteral("%%DocumentCustomColors: (PANTONE 239 C)\r%%+ (PANTONE 252 C)\r"
                                        "%%+ (PANTONE 253 C)\r%%CMYKCustomColor: 0 1 0 0 (PANTONE 239 C)\r");
    const auto colors = LinkMetadata::customColorsInText(text, false);
    ASSERT_TRUE(colors);
    EXPECT_EQ(colors->count, QStringLiteral("3"));
    EXPECT_EQ(colors->list, QStringLiteral("PANTONE 239 C\rPANTONE 252 C\rPANTONE 253 C"));

    EXPECT_FALSE(
        LinkMetadata::customColorsInText(QStringLiteral("%%DocumentCustomColors: (A)\r%%RGBCustomColor"), false));
    EXPECT_TRUE(
        LinkMetadata::customColorsInText(QStringLiteral("%%DocumentCustomColors: (A)\r%%RGBCustomColor"), true));
    EXPECT_FALSE(
        LinkMetadata::customColorsInText(QStringLiteral("%%CMYKCustomColor %%DocumentCustomColors: (A)"), true));
    EXPECT_FALSE(LinkMetadata::customColorsInText(QStringLiteral("CustomColors: ("), true));
}

namespace {

// Runs the EPS reading on a file holding `head`, with the record's colour set.
QVariantMap readEps(const QByteArray& head, const QString& color, quillon::test::FakeLinkedFileReader& reader,
                    const QString& actual = QStringLiteral("-"))
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("x.eps"));
    quillon::test::writeAll(path, head);
    QVariantMap record{{kLinkKindKey, kLinkKindEPS},
                       {kLinkColorKey, color},
                       {kLinkActualResKey, actual},
                       {kLinkHorScaleKey, QStringLiteral("50")}};
    LinkMetadata(record, path, true, reader, nullptr).processEPS();
    return record;
}

} // namespace

TEST(LinkMetadata, RasterEpsResolutionComesFromImageDataAndBoundingBox)
{
    quillon::test::FakeLinkedFileReader reader;
    const QByteArray head = "%!PS-Adobe-3.0 EPSF-3.0\r%%Creator: Adobe Photoshop Version 7.0\r"
                            "%%HiResBoundingBox: 0 0 196.0396 147.5644\r%ImageData: 275 207 8 3 0 1 3 \"beginimage\"\r";
    const QVariantMap record = readEps(head, QStringLiteral("RGB"), reader);
    EXPECT_EQ(record.value(kLinkActualResKey), QStringLiteral("101"));
    EXPECT_EQ(record.value(kLinkEffectiveResKey), QStringLiteral("202"));

    // InDesign's own figure stays.
    EXPECT_EQ(readEps(head, QStringLiteral("RGB"), reader, QStringLiteral("300")).value(kLinkActualResKey),
              QStringLiteral("300"));
    // JPEG-encoded image data.
    const QByteArray jpeg = "%!PS-Adobe-3.0 EPSF-3.0\r%ImageData: 100 100 8 4 0 1 1 \"beginimage\"\r";
    EXPECT_EQ(readEps(jpeg, QStringLiteral("CMYK"), reader).value(kLinkKindKey), kLinkKindEPSJPEG);
}

TEST(LinkMetadata, RasterEpsColoursByTheRecordsColour)
{
    quillon::test::FakeLinkedFileReader reader;
    const QByteArray duotone = "%!PS-Adobe-3.0 EPSF-3.0\r%%DuotoneInks: (PANTONE 327 CVC)\r%%+ (Black)\r"
                               "%ImageData: 4 4 8 1 0 1 2\r";
    const QVariantMap two = readEps(duotone, kLinkColorUnknown, reader);
    EXPECT_EQ(two.value(kLinkColorKey), QStringLiteral("Duotone"));
    EXPECT_EQ(two.value(kLinkEpsColsKey), QStringLiteral("2"));
    EXPECT_EQ(two.value(kLinkEpsColListKey), QStringLiteral("PANTONE 327 CVC\rBlack"));

    const QByteArray bitmap =
        "%!PS-Adobe-3.0 EPSF-3.0\r%%DocumentProcessColors: Black\r%ImageData: 100 67 1 1 0 13 7\r";
    EXPECT_EQ(readEps(bitmap, kLinkColorUnknown, reader).value(kLinkColorKey), kLinkColorBlackAndWhite);

    // Markers out of order give no colours rather than a failure.
    const QByteArray broken = "%!PS-Adobe-3.0 %ImageData: 1 1 8 1\r%%DuotoneInks: (A)";
    EXPECT_EQ(readEps(broken, kLinkColorUnknown, reader).value(kLinkColorKey), kLinkColorUnknown);

    reader.epsFacts = LinkedFileReader::VectorEPSFacts{QStringLiteral("CMYK"), 2, QStringLiteral("A\rB"), 0, QString()};
    const QByteArray dcs = "%!PS-Adobe-3.0 EPSF-3.0\r%ImageData: 10 10 8 4 0 1 1 \"x\"\r";
    const QVariantMap spot = readEps(dcs, QStringLiteral("CMYK + Spot"), reader);
    EXPECT_EQ(spot.value(kLinkKindKey), kLinkKindEPSDCSJPEG);
    EXPECT_EQ(spot.value(kLinkEpsColsKey), QStringLiteral("2"));
    reader.epsFacts.reset();
    const QVariantMap unread = readEps(dcs, QStringLiteral("CMYK + Spot"), reader);
    EXPECT_EQ(unread.value(kLinkEpsColsKey), QStringLiteral("?"));
    EXPECT_EQ(unread.value(kLinkEpsColListKey), QStringLiteral("-"));

    const QByteArray multichannel =
        "%!PS-Adobe-3.0 ImageData %%DocumentCustomColors: (Varnish)\r%%CMYKCustomColor: 0 0 0 0 (Varnish)\r";
    const QVariantMap channels = readEps(multichannel, QStringLiteral("Unknown"), reader);
    EXPECT_EQ(channels.value(kLinkKindKey), kLinkKindEPSDCS);
    EXPECT_EQ(channels.value(kLinkColorKey), QStringLiteral("Multichannel"));
    EXPECT_EQ(channels.value(kLinkEpsColListKey), QStringLiteral("Varnish"));
}

TEST(LinkMetadata, PhotoshopEpsBehindAPreviewIsReadFromItsPostScriptHead)
{
    quillon::test::FakeLinkedFileReader reader;
    reader.previewHead =
        QStringLiteral("%!PS-Adobe-3.0 EPSF-3.0\r%%HiResBoundingBox: 0 0 72 72\r%ImageData: 300 300 8 4 0 1 1 \"x\"\r");
    const QVariantMap record =
        readEps(QByteArray("\xC5\xD0\xD3\xC6 binary Adobe Photoshop 7.0 head"), QStringLiteral("RGB"), reader);
    EXPECT_EQ(record.value(kLinkActualResKey), QStringLiteral("300"));
    EXPECT_EQ(record.value(kLinkKindKey), kLinkKindEPSJPEG);
}

TEST(LinkMetadata, VectorEpsTakesTheReadersFacts)
{
    quillon::test::FakeLinkedFileReader reader;
    reader.epsFacts = LinkedFileReader::VectorEPSFacts{QStringLiteral("CMYK"), 3, QStringLiteral("A\rB\rC"),
                                                       QStringLiteral("E2"), QStringLiteral("Embedded fonts:\rX\rY")};
    const QVariantMap record =
        readEps("%!PS-Adobe-3.0 EPSF-3.0\r%%Creator: Adobe Illustrator(R) 8.0\r", kLinkColorUnknown, reader);
    EXPECT_EQ(record.value(kLinkEpsColsKey), QVariant(3));
    EXPECT_EQ(record.value(kLinkEpsFontsKey), QStringLiteral("E2"));
    EXPECT_TRUE(reader.lastEPSHead.startsWith(QStringLiteral("%!PS-Adobe-3.0")));
}
