#include "FakeLinkedFileReader.h"
#include "QtPrinters.h"

#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "links/DefaultApplication.h"
#include "links/LinkRecordKeys.h"
#include "links/PackageParts.h"
#include "links/QNIDMLLinksProcessor.h"

#include "support/TestSupport.h"
#include "support/UnpackForTest.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::links;

namespace {

const QString kSets = QStringLiteral("idml/sets/simpleidml/tests/regressiontests/IDML/");

struct Analysis {
    QVariantList records;
    PageSizes pageSizes;
    app::Status dataFile = app::Status();
    int countedLinks = 0;
};

// The Link elements of a package, counted on the text of its parts.
int linkElementsIn(const QString& package)
{
    int count = 0;
    for (const char* part : {"MasterSpreads", "Spreads", "Stories"})
        for (const QString& path : packagePartFiles(package, QLatin1String(part)))
            count += static_cast<int>(test::readAll(path).count("<Link "));
    return count;
}

// Unpacks a sample document and analyses it, as the command line does.
Analysis analyse(const QString& sample, const QStringList& linkFolders = {})
{
    const QString idml = test::samplePath(sample);
    QTemporaryDir work;
    const auto unpacked = test::unpackForTest(idml);
    EXPECT_TRUE(unpacked) << sample.toStdString();
    if (!unpacked)
        return {};
    const QString package = unpacked->path();
    static const DefaultApplications noApps({}, {}, {});
    static const test::FakeLinkedFileReader reader;
    LinksController controller;
    controller.linkFolders = linkFolders;
    controller.dataFileFolder = work.path();
    controller.fileReader = &reader;
    controller.defaultApps = &noApps;
    QNIDMLLinksProcessor processor(controller);
    Analysis analysis;
    analysis.records = processor.processLinksInIDMLFolder(package, idml);
    analysis.pageSizes = processor.docPageSizes();
    analysis.dataFile = processor.dataFileStatus();
    analysis.countedLinks = linkElementsIn(package);
    return analysis;
}

QVariantMap recordAt(const Analysis& analysis, int index)
{
    EXPECT_GT(analysis.records.size(), index);
    return analysis.records.value(index).toMap();
}

} // namespace

TEST(SampleDocuments, EveryDocumentAnalysesAndWritesItsDataFile)
{
    QDirIterator it(test::samplePath(QStringLiteral("idml")), {QStringLiteral("*.idml")}, QDir::Files,
                    QDirIterator::Subdirectories);
    int documents = 0;
    while (it.hasNext()) {
        const QString path = it.next();
        const QString sample =
            QStringLiteral("idml/") + QDir(test::samplePath(QStringLiteral("idml"))).relativeFilePath(path);
        const Analysis analysis = analyse(sample);
        EXPECT_TRUE(analysis.dataFile.ok()) << sample.toStdString();
        // Every Link of the samples is a file link, found in a spread or, when needed, in a story.
        EXPECT_EQ(analysis.records.size(), analysis.countedLinks) << sample.toStdString();
        for (const QVariant& item : analysis.records) {
            const QVariantMap record = item.toMap();
            EXPECT_FALSE(record.value(kLinkPageKey).toString().isEmpty()) << sample.toStdString();
            EXPECT_FALSE(record.value(kLinkNameKey).toString().isEmpty()) << sample.toStdString();
        }
        ++documents;
    }
    EXPECT_GE(documents, 17);
}

TEST(SampleDocuments, AnAnchoredLinkIsFoundByTheStoryPassAndRelocated)
{
    const Analysis analysis = analyse(kSets + QStringLiteral("magazineA-bloc-notes.idml"),
                                      {test::samplePath(kSets + QStringLiteral("media"))});
    const QVariantMap record = recordAt(analysis, 0);
    EXPECT_EQ(record.value(kLinkIsAnchoredKey), QVariant(true));
    EXPECT_EQ(record.value(kLinkIdKey), QStringLiteral("676"));
    EXPECT_EQ(record.value(kLinkPageKey), QStringLiteral("1ª"));
    EXPECT_EQ(record.value(kLinkSortOrderOfPageInDocKey).toDouble(), 0.0);
    EXPECT_EQ(record.value(kLinkPathKey), test::samplePath(kSets + QStringLiteral("media/Jacques-Yves_Cousteau.jpg")));
    EXPECT_EQ(record.value(kLinkNameKey), QStringLiteral("Jacques-Yves_Cousteau.jpg"));
    const QString status = record.value(kLinkStatusKey).toString();
    EXPECT_TRUE(status == kLinkStatusOK || status == kLinkStatusModified) << status.toStdString();
    EXPECT_EQ(record.value(kLinkDateKey).toDateTime().toUTC(), QDateTime(QDate(2012, 5, 30), QTime(9, 5, 24), Qt::UTC));
    EXPECT_EQ(record.value(kLinkKindKey), kLinkKindJPEG);
    EXPECT_EQ(record.value(kLinkColorKey), QStringLiteral("Grayscale"));
    EXPECT_EQ(record.value(kLinkActualResKey), QStringLiteral("150"));
    EXPECT_EQ(record.value(kLinkEffectiveResKey), QStringLiteral("150"));
    EXPECT_EQ(record.value(kLinkScaleKey), QStringLiteral("100x101"));
    EXPECT_EQ(record.value(kLinkSizeBytesKey).toUInt(), 37435U);
    EXPECT_EQ(record.value(kLinkSizeKey), QStringLiteral("37 KB"));
    EXPECT_EQ(record.value(kLinkParentIdKey), QStringLiteral("674"));
    EXPECT_EQ(record.value(kLinkPrintKey), kLinkPrints);

    // Without the folder the link stays where the document recorded it.
    const QVariantMap missing = recordAt(analyse(kSets + QStringLiteral("magazineA-bloc-notes.idml")), 0);
    EXPECT_EQ(missing.value(kLinkStatusKey), kLinkStatusMissing);
    EXPECT_TRUE(missing.value(kLinkPathKey).toString().startsWith(QStringLiteral("/Users/stan/Dropbox/")));
}

TEST(SampleDocuments, RelativeAndNearbyLinksAreFound)
{
    const QVariantMap relative =
        recordAt(analyse(kSets + QStringLiteral("expected/article-1photo_import-xml.idml")), 0);
    EXPECT_EQ(relative.value(kLinkPathKey), test::samplePath(kSets + QStringLiteral("media/bouboune.jpg")));
    EXPECT_NE(relative.value(kLinkStatusKey), kLinkStatusMissing);
    // The size is the one the document recorded, not the file's.
    EXPECT_EQ(relative.value(kLinkSizeBytesKey).toUInt(), 27644U);

    const Analysis anuga =
        analyse(QStringLiteral("idml/sets/anuga/demo-web/public/Anuga_2025_28732_Event_Themen_Speaker_"
                               "Templates_1080x1350px_with_green_rect_where_finally_the_logo_renders.idml"));
    ASSERT_EQ(anuga.records.size(), 12);
    int epsFound = 0;
    for (const QVariant& item : anuga.records) {
        const QVariantMap record = item.toMap();
        if (record.value(kLinkKindKey) != kLinkKindEPS)
            continue;
        EXPECT_EQ(record.value(kLinkPathKey),
                  test::samplePath(QStringLiteral("idml/sets/anuga/demo-web/public/KM_logo_WEISS_Schutzraum.eps")));
        EXPECT_NE(record.value(kLinkStatusKey), kLinkStatusMissing);
        EXPECT_EQ(record.value(kLinkSizeBytesKey).toUInt(), 285526U);
        ++epsFound;
    }
    EXPECT_EQ(epsFound, 4);
    ASSERT_EQ(anuga.pageSizes.size(), 1);
    EXPECT_EQ(anuga.pageSizes.first().size(), 4);
}

TEST(SampleDocuments, EmbeddedLinksKeepThePacketsProfile)
{
    const Analysis analysis = analyse(QStringLiteral("idml/placeholders.idml"));
    ASSERT_EQ(analysis.records.size(), 11);
    for (const QVariant& item : analysis.records) {
        const QVariantMap record = item.toMap();
        EXPECT_EQ(record.value(kLinkStatusKey), kLinkStatusEmbedded);
        EXPECT_EQ(record.value(kLinkAppKey), QStringLiteral("-"));
        EXPECT_EQ(record.value(kLinkVolumeKey), QString());
        EXPECT_EQ(record.value(kLinkKindKey), kLinkKindPNG);
        EXPECT_EQ(record.value(kLinkProfileKey), QStringLiteral("sRGB IEC61966-2.1"));
        EXPECT_EQ(record.value(kLinkPageKey), QStringLiteral("1"));
    }
    EXPECT_EQ(recordAt(analysis, 10).value(kLinkPathKey),
              QStringLiteral("C:/Users/sioch/Desktop/idml samples/Images/ph standard.png"));
}

TEST(SampleDocuments, MasterSpreadGraphicsComeFirstWithoutSortOrder)
{
    const Analysis analysis = analyse(QStringLiteral("idml/freshers.idml"));
    ASSERT_EQ(analysis.records.size(), 24);
    const QVariantMap master = recordAt(analysis, 0);
    EXPECT_EQ(master.value(kLinkPageKey), QStringLiteral("A-Master"));
    EXPECT_FALSE(master.contains(kLinkSortOrderOfPageInDocKey));
    EXPECT_EQ(master.value(kLinkKindKey), kLinkKindPNG);
    EXPECT_EQ(master.value(kLinkStatusKey), kLinkStatusMissing);
    EXPECT_EQ(master.value(kLinkVolumeKey), QStringLiteral("?"));
    EXPECT_EQ(master.value(kLinkSizeKey), QStringLiteral("1 KB"));

    const QVariantMap tiff = recordAt(analysis, 2);
    EXPECT_EQ(
        tiff.value(kLinkPathKey),
        QStringLiteral(
            "/Users/ben/Documents/Boar/Volume 33/Issue 0/Images/Rootes_Social_Building_at_University_of_Warwick.tif"));
    EXPECT_EQ(tiff.value(kLinkPageKey), QStringLiteral("1"));
    EXPECT_EQ(tiff.value(kLinkScaleKey), QStringLiteral("21.7"));
    EXPECT_EQ(tiff.value(kLinkEffectiveResKey), QStringLiteral("332"));
    // This packet keeps its compression in a later description, which is not read.
    EXPECT_EQ(tiff.value(kLinkKindKey), kLinkKindTIFF);
    const QVariantMap ai = recordAt(analysis, 4);
    EXPECT_EQ(ai.value(kLinkKindKey), kLinkKindPDFFromAI);
    EXPECT_EQ(ai.value(kLinkColorKey), kLinkColorUnknown);
}

TEST(SampleDocuments, StoryLinksOfALongManualCarryNestedLinks)
{
    const Analysis analysis = analyse(QStringLiteral("idml/manual_template_test2.idml"));
    ASSERT_EQ(analysis.records.size(), 91);
    int withNested = 0;
    for (const QVariant& item : analysis.records) {
        const QVariantMap record = item.toMap();
        EXPECT_EQ(record.value(kLinkIsAnchoredKey), QVariant(true));
        EXPECT_TRUE(record.value(kLinkPageKey).toString().endsWith(QStringLiteral("ª")));
        const QVariantList nested = record.value(kLinkNestedLinksKey).toList();
        if (nested.isEmpty())
            continue;
        ++withNested;
        const QVariantMap first = nested.first().toMap();
        EXPECT_EQ(first.value(kLinkStatusKey), kLinkStatusMissing);
        EXPECT_EQ(first.value(kLinkSizeKey), QStringLiteral("-"));
    }
    EXPECT_GT(withNested, 0);
    EXPECT_EQ(recordAt(analysis, 0).value(kLinkSizeBytesKey).toUInt(), 0xce9a6U);
}
