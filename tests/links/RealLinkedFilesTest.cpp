#include "IdmlFragments.h"
#include "support/QtPrinters.h"

#include "links/DefaultApplication.h"
#include "links/LinkRecordKeys.h"
#include "links/QNIDMLLinksProcessor.h"

#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::links;

namespace {

struct Placed {
    const char* sample;
    const char* format;
    const char* graphic;
    const char* space;
};

// Analyses a document whose one spread places each sample file, with the file-inspection readers.
QVariantList analysePlaced(std::initializer_list<Placed> files)
{
    QTemporaryDir dir;
    std::string body;
    int index = 0;
    for (const Placed& file : files) {
        test::PlacedLink link;
        link.linkSelf = "u" + std::to_string(++index);
        link.uri = "file:" + QUrl::toPercentEncoding(test::samplePath(QLatin1String(file.sample)), "/").toStdString();
        link.linkAttributes = std::string("StoredState=\"Normal\" LinkResourceFormat=\"") + file.format + "\"";
        link.graphic = file.graphic;
        link.graphicAttributes = std::string("Space=\"") + file.space + "\" ItemTransform=\"0.5 0 0 0.5 0 0\"";
        body += test::placedLinkXml(link);
    }
    test::writePackage(dir.filePath(QStringLiteral("pkg")),
                       {{"Spreads/Spread_1.xml", test::spreadXml(1, 0, 0, {{"1", 0}}, body)}});
    static const DefaultApplications noApps({}, {}, {});
    LinksController controller;
    controller.defaultApps = &noApps;
    QNIDMLLinksProcessor processor(controller);
    return processor.processLinksInIDMLFolder(dir.filePath(QStringLiteral("pkg")),
                                              dir.filePath(QStringLiteral("a.idml")));
}

} // namespace

TEST(RealLinkedFiles, ProfilesAndColoursComeFromTheFilesThemselves)
{
    const QVariantList records = analysePlaced({
        {"tiff/ExifTool.tif", "$ID/TIFF", "Image", "$ID/#Links_RGB"},
        {"psd/north_america_newspaper.psd", "$ID/Photoshop", "Image", "$ID/#Links_RGB"},
        {"psd/4x4_8bit_duotone.psd", "$ID/Photoshop", "Image", "$ID/kLinksPanelDuotone"},
        {"ai/Banner_EasyDisplay.ai", "$ID/Adobe Portable Document Format (PDF)", "PDF", ""},
        {"eps/Envoy_Logo_Final_CMYK-REVERSE.eps", "$ID/EPS", "EPS", ""},
        {"eps/PostScript.eps", "$ID/EPS", "EPS", "$ID/#Links_CMYK"},
    });
    ASSERT_EQ(records.size(), 6);
    const auto at = [&records](int i) { return records[i].toMap(); };

    EXPECT_EQ(at(0).value(kLinkProfileKey), QStringLiteral("sRGB IEC61966-2.1"));
    EXPECT_EQ(at(1).value(kLinkProfileKey).toString().left(16), QStringLiteral("Adobe RGB (1998)"));

    EXPECT_EQ(at(2).value(kLinkColorKey), QStringLiteral("Duotone"));
    EXPECT_EQ(at(2).value(kLinkEpsColsKey), QStringLiteral("2"));
    EXPECT_TRUE(at(2).value(kLinkEpsColListKey).toString().contains(QLatin1String("PANTONE 327 CVC")));

    EXPECT_EQ(at(3).value(kLinkKindKey), kLinkKindPDFFromAI);
    EXPECT_EQ(at(3).value(kLinkColorKey), QStringLiteral("CMYK"));

    // A vector EPS: its spot colours from the comments after the preview and thumbnail.
    EXPECT_EQ(at(4).value(kLinkEpsColsKey).toInt(), 3);
    EXPECT_TRUE(at(4).value(kLinkEpsColListKey).toString().contains(QLatin1String("PANTONE 252 C")));

    // A Photoshop EPS: its resolution from the image data (8 px) and the last bounding box of the
    // head (434.88 pt, a later one than the image's own): 1.32 ppi, 2.65 at 50 %.
    EXPECT_EQ(at(5).value(kLinkActualResKey), QStringLiteral("1"));
    EXPECT_EQ(at(5).value(kLinkEffectiveResKey), QStringLiteral("3"));
}
