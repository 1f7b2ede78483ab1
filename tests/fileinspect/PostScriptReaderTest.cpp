#include "fileinspect/QNPreflightMethods.h"

#include "Fixtures.h"
#include "app/Alerts.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::fileinspect;
using quillon::test::samplePath;

namespace {

QVariantList vectorEps(QNPreflightMethods& reader, const QString& sample)
{
    const QString path = samplePath(sample);
    return reader.readEPS1500AtPath(path, reader.readFileAtPath(path, 1500));
}

QVariantList vectorEpsOfText(QNPreflightMethods& reader, const QByteArray& text)
{
    const ByteSource file = ByteSource::fromBytes(text);
    return reader.readEPS1500(file, textFromBytes(text.left(1500)));
}

QVariantList list(std::initializer_list<QVariant> values)
{
    return QVariantList(values);
}

const QByteArray kIllustrator8Head = "%!PS-Adobe-3.0 EPSF-3.0\r%%Creator: Adobe Illustrator(R) 8.0\r";

} // namespace

TEST(PostScriptReader, VectorEpsFilesOfIllustrator)
{
    QNPreflightMethods reader;
    // Version 17: the colour mode comes from the XMP packet (LAB, so not CMYK); the spot colours
    // follow the thumbnail; an empty font comment on a line of its own sends the reader to the
    // embedded fonts, of which there are none.
    EXPECT_EQ(vectorEps(reader, u"eps/Envoy_Logo_Final_CMYK-REVERSE.eps"_s),
              list({u"RGB"_s, 3, u"PANTONE 239 C\nPANTONE 252 C\nPANTONE 253 C"_s, u"-"_s, u"-"_s}));
    EXPECT_EQ(reader.aiVersion(), 17u);

    // Illustrator 8: "%%DocumentProcessColors:" makes it CMYK.
    EXPECT_EQ(vectorEps(reader, u"eps/ulogo.eps"_s).value(0).toString(), u"CMYK");
    EXPECT_EQ(reader.aiVersion(), 8u);

    // CS3 (version 13) with a thumbnail: the comments are read after the thumbnail data.
    EXPECT_EQ(vectorEps(reader, u"eps/beamerthemesuse-logo.eps"_s).value(0).toString(), u"CMYK");
    EXPECT_EQ(reader.aiVersion(), 13u);

    // CS6 (version 16) reads "<xmpG:mode>" anywhere in the file, with or without a preview header.
    // The font comment ends in CR LF, so the list taken runs up to 2 before the next comment: empty.
    const QVariantList cs6 = list({u"CMYK"_s, u"-"_s, u"-"_s, 1, QString()});
    EXPECT_EQ(vectorEps(reader, u"eps/illuCS6_no_preview.eps"_s), cs6);
    EXPECT_EQ(vectorEps(reader, u"eps/illuCS6_preview.eps"_s), cs6);
    EXPECT_EQ(reader.aiVersion(), 16u);
}

TEST(PostScriptReader, VectorEpsFilesOfOtherPrograms)
{
    QNPreflightMethods reader;
    // gnuplot: no Illustrator creator, and "(atend)" fonts whose comment has no known end.
    EXPECT_EQ(vectorEps(reader, u"eps/zero_bb.eps"_s), list({u"-"_s, u"-"_s, u"-"_s, u"?"_s, u"?"_s}));
    EXPECT_EQ(reader.aiVersion(), 0u);
    // Illustrator 1.0 wrote its comments without the blank after the colon: nothing matches.
    const QVariantList none = list({u"-"_s, u"-"_s, u"-"_s, u"-"_s, u"-"_s});
    EXPECT_EQ(vectorEps(reader, u"eps/golfer.eps"_s), none);
}

TEST(PostScriptReader, ColourModeOfIllustrator8ByProcessColours)
{
    QNPreflightMethods reader;
    EXPECT_EQ(vectorEpsOfText(reader, kIllustrator8Head + "%%EndComments\r").value(0).toString(), u"RGB");
    // Version 14 and later without an XMP colour mode.
    EXPECT_EQ(vectorEpsOfText(reader, "%%Creator: Adobe Illustrator(R) 24.0\r%%EndComments\r").value(0).toString(),
              u"?");
    EXPECT_EQ(vectorEpsOfText(reader, "%%Creator: Adobe Illustrator(R) 24.0\r<xmpG:mode>RGB</xmpG:mode>CMYK")
                  .value(0)
                  .toString(),
              u"RGB");
}

TEST(PostScriptReader, CustomColoursByTheirMarkers)
{
    QNPreflightMethods reader;
    const QString three = QStringLiteral("%%DocumentCustomColors: (PANTONE 185 C)\r%%+ (PANTONE 286 C)\r%%+ (Gold)\r"
                                         "%%CMYKCustomColor: 0 1 1 0 (PANTONE 185 C)\r");
    EXPECT_EQ(reader.spotColorsOfVectorEPS(three), list({3, u"PANTONE 185 C\rPANTONE 286 C\rGold"_s}));
    // Missing or out-of-order markers leave the colours unknown instead of cutting nonsense.
    const QVariantList none = list({u"-"_s, u"-"_s});
    EXPECT_EQ(reader.spotColorsOfVectorEPS(u"%%DocumentCustomColors: (Gold)\r%%EndComments"_s), none);
    EXPECT_EQ(reader.spotColorsOfVectorEPS(QStringLiteral("%%CMYKCustomColor: 0 0 0 1 (Gold)\r"
                                                          "%%DocumentCustomColors: (Gold)\r")),
              none);
    EXPECT_EQ(reader.spotColorsOfVectorEPS(u"%%DocumentCustomColors: (\r%%CMYKCustomColor"_s), none);
}

TEST(PostScriptReader, DocumentFonts)
{
    QNPreflightMethods reader;
    const QString head = QStringLiteral("%%DocumentFonts: Helvetica\r\n%%+ Times-Roman\r\n%%+ Symbol\r\n"
                                        "%%DocumentNeededFonts: Helvetica\r\n");
    const quillon::app::FoundRange fonts{0, 17};
    EXPECT_EQ(reader.fontsOfVectorEPS(head, fonts, ByteSource()), list({3, u"Helvetica\r\nTimes-Roman\r\nSymbol"_s}));
    // The second end marker serves when the first is absent.
    EXPECT_EQ(reader.fontsOfVectorEPS(u"%%DocumentFonts: Courier\r\n%%DocumentSuppliedFonts: x"_s, fonts, ByteSource()),
              list({1, u"Courier"_s}));
    const QVariantList unknown = list({u"?"_s, u"?"_s});
    EXPECT_EQ(reader.fontsOfVectorEPS(u"%%DocumentFonts: Courier\r\n%%EndComments"_s, fonts, ByteSource()), unknown);
    // An end marker before the font comment is out of order.
    EXPECT_EQ(reader.fontsOfVectorEPS(u"%%DocumentNeededFonts:\r%%DocumentFonts: Courier\r"_s, {23, 17}, ByteSource()),
              unknown);
}

TEST(PostScriptReader, EmbeddedFontsWhenTheFontCommentIsEmpty)
{
    QNPreflightMethods reader;
    EXPECT_EQ(reader.embeddedFontsOfVectorEPS(samplePath("eps/connexions.eps")),
              QStringList({u"E3"_s, QStringLiteral("Embedded fonts:\rTLRAAA+Myriad-Roman\r"
                                                   "TJMAAA+TrebuchetMS-Bold\rTTVBAA+ArialRoundedMTBold")}));
    const QByteArray eps = kIllustrator8Head + "%%DocumentFonts: \n%%EndComments\n"
                                               "%ADOBeginSubsetFont: AAAAAA+Futura Initial\r...\r"
                                               "%ADOBeginSubsetFont: AAAAAA+Futura AddGlyphs\r"
                                               "%ADOBeginSubsetFont: BBBBBB+Gill Initial\r";
    EXPECT_EQ(vectorEpsOfText(reader, eps).mid(3), list({u"E2"_s, u"Embedded fonts:\rAAAAAA+Futura\rBBBBBB+Gill"_s}));
    EXPECT_EQ(reader.embeddedFontsOfVectorEPS(ByteSource::fromBytes(kIllustrator8Head)), QStringList({u"-"_s, u"-"_s}));
}

TEST(PostScriptReader, WholeFileReadsThatFailAlertTheUser)
{
    quillon::app::ScriptedAlertSink alerts;
    QNPreflightMethods reader(&alerts);
    const QString missing = samplePath("eps/no such file.eps");
    EXPECT_EQ(reader.embeddedFontsOfVectorEPS(missing), QStringList({u"-"_s, u"-"_s}));
    EXPECT_EQ(reader.getRead1500ForPhotoshopEPSWithTIFFPreview(missing), QString());
    const QNPreflightMethods::AIHeadAndFonts ai = reader.read4500AndFontsOfPreCS3AI(missing);
    EXPECT_TRUE(ai.head.isEmpty() && ai.fonts.isEmpty());
    // The colour mode and the Illustrator model fall back quietly.
    EXPECT_EQ(reader.colorModeOfAIFile(missing), u"?");

    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 3u);
    for (const auto& request : requests) {
        EXPECT_EQ(request.title, u"Error");
        EXPECT_TRUE(request.critical);
        EXPECT_TRUE(request.message.startsWith(u"The file %1 could not be parsed.\n\nError: "_s.arg(missing)))
            << request.message.toStdString();
    }
}

TEST(PostScriptReader, PhotoshopEpsBehindAPreviewHeader)
{
    QNPreflightMethods reader;
    const QString head = reader.getRead1500ForPhotoshopEPSWithTIFFPreview(samplePath("eps/adobeJpeg1.eps"));
    EXPECT_EQ(head.size(), 1500);
    EXPECT_TRUE(head.contains(QLatin1String("%ImageData: 275 207 8 3 0 1 3")));
    // PostScript from the first byte: nothing precedes it, so there is no preview to skip.
    EXPECT_EQ(reader.getRead1500ForPhotoshopEPSWithTIFFPreview(samplePath("eps/PostScript.eps")), QString());
    // A short tail loses its last character; no marker gives nothing.
    EXPECT_EQ(reader.getRead1500ForPhotoshopEPSWithTIFFPreview(
                  ByteSource::fromBytes("\xC5\xD0\xD3\xC6....%!PS-Adobe-3.0 EPSF-3.0\r%%End")),
              u"%!PS-Adobe-3.0 EPSF-3.0\r%%En");
    EXPECT_EQ(reader.getRead1500ForPhotoshopEPSWithTIFFPreview(ByteSource::fromBytes(QByteArray(5000, 'x'))),
              QString());
}

TEST(PostScriptReader, IllustratorColourModel)
{
    QNPreflightMethods reader;
    const QList<std::pair<const char*, const char*>> files{
        {"ai/Banner_EasyDisplay.ai", "CMYK"}, {"ai/dojoposter-Apex.ai", "CMYK"}, {"ai/schblocwebgui.ai", "RGB"},
        {"ai/LgHS-logo.ai", "RGB"},           {"ai/1-liners-logo.ai", "RGB"},    {"eps/PostScript.eps", "?"},
    };
    for (const auto& [file, model] : files)
        EXPECT_EQ(reader.colorModeOfAIFile(samplePath(QString::fromLatin1(file))), QString::fromLatin1(model)) << file;

    auto model = [&reader](const QByteArray& text) { return reader.colorModeOfAIFile(ByteSource::fromBytes(text)); };
    EXPECT_EQ(model("%!PS\n%AI9_ColorModel: 2\n"), u"CMYK");
    EXPECT_EQ(model("%!PS\r\n%AI9_ColorModel: 1\r\n"), u"RGB");
    // The first line holding the marker decides, even when it is too short to say.
    EXPECT_EQ(model("%!PS\n%AI9_ColorModel:\n%AI9_ColorModel: 2\n"), u"?");
    // Lines come in pieces of at most 255 bytes: a marker across a piece boundary is not seen.
    EXPECT_EQ(model(QByteArray(250, 'x') + "%AI9_ColorModel: 2\n"), u"?");
    EXPECT_EQ(model(QByteArray(255, 'x') + "%AI9_ColorModel: 2\n"), u"CMYK");
    // Far beyond the first window of the file.
    EXPECT_EQ(model(QByteArray(700000, '\r') + "\n%AI9_ColorModel: 2\n"), u"CMYK");
}

TEST(PostScriptReader, OlderIllustratorHeadAndFonts)
{
    QNPreflightMethods reader;
    const QNPreflightMethods::AIHeadAndFonts cs = reader.read4500AndFontsOfPreCS3AI(samplePath("ai/schblocwebgui.ai"));
    EXPECT_EQ(cs.head.size(), 4500);
    EXPECT_EQ(cs.fonts, u"Myriad-Roman");

    const QNPreflightMethods::AIHeadAndFonts postscript =
        reader.read4500AndFontsOfPreCS3AI(samplePath("eps/PostScript.eps"));
    EXPECT_TRUE(postscript.head.isEmpty() && postscript.fonts.isEmpty());
}

TEST(PostScriptReader, FontNamesOfIllustratorFiles)
{
    // The slash form skips a six-letter subset prefix and its plus sign.
    EXPECT_EQ(QNPreflightMethods::fontsOfAIFile(QStringLiteral("%PDF\r/FontName/ABCDEF+Helvetica/Flags 4\r"
                                                               "/FontName/GHIJKL+Times-Bold/Flags 4\r"
                                                               "/FontName/MNOPQR+Helvetica/Flags 4")),
              u"Helvetica\nTimes-Bold");
    // The blank form ends its names at carriage returns.
    EXPECT_EQ(QNPreflightMethods::fontsOfAIFile(QStringLiteral("%!PS\r/FontName /ABCDEF+Minion\r"
                                                               "/FontName /ABCDEF+Myriad\r")),
              u"Minion\nMyriad");
    // Without a subset prefix the first six letters are skipped all the same.
    EXPECT_EQ(QNPreflightMethods::fontsOfAIFile(u"x/FontName/Helvetica-Bold/"_s), u"ica-Bold");
    EXPECT_EQ(QNPreflightMethods::fontsOfAIFile(u"/FontName/ABCDEF+Helvetica/"_s), QString());
    EXPECT_EQ(QNPreflightMethods::fontsOfAIFile(u"x/FontName/AB"_s), QString());
}

TEST(PostScriptReader, IllustratorVersionOfAnOddCreatorIsZero)
{
    EXPECT_EQ(QNPreflightMethods::illustratorVersion(u"%%Creator: Adobe Illustrator(R) -5"_s), 0u);
    EXPECT_EQ(QNPreflightMethods::illustratorVersion(u"%%Creator: Adobe Illustrator(R)"_s), 0u);
}
