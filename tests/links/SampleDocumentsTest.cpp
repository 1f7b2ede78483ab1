#include "FakeLinkedFileReader.h"
#include "support/QtPrinters.h"

#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "idml/IdmlDocument.h"
#include "links/DefaultApplication.h"
#include "links/LinkRecordKeys.h"
#include "links/QNIDMLLinksProcessor.h"

#include "support/TestSupport.h"
#include "support/UnpackForTest.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::links;
using namespace quillon::idml;

namespace {

const QString kSets = QStringLiteral("idml/sets/simpleidml/tests/regressiontests/IDML/");

struct Analysis {
    QVariantList records;
    PageSizes pageSizes;
    int countedLinks = 0;
};

// The Link elements of a package, counted on the text of its parts.
int linkElementsIn(const QString& package)
{
    int count = 0;
    const auto document = idml::IdmlDocument::fromFolder(package);
    EXPECT_TRUE(document.ok());
    if (!document)
        return 0;
    for (const QStringList* parts : {&(*document)->masterSpreads(), &(*document)->spreads(), &(*document)->stories()})
        for (const QString& name : *parts)
            count += static_cast<int>(test::readAll(package + u'/' + name).count("<Link "));
    return count;
}

// Unpacks a sample document and analyses it, as the command line does.
Analysis analyse(const QString& sample, const QStringList& linkFolders = {})
{
    const QString idml = test::samplePath(sample);
    const auto unpacked = test::unpackForTest(idml);
    EXPECT_TRUE(unpacked) << sample.toStdString();
    if (!unpacked)
        return {};
    const QString package = unpacked->path();
    static const DefaultApplications noApps({}, {}, {});
    static const test::FakeLinkedFileReader reader;
    LinksController controller;
    controller.linkFolders = linkFolders;
    controller.fileReader = &reader;
    controller.defaultApps = &noApps;
    QNIDMLLinksProcessor processor(controller);
    Analysis analysis;
    analysis.records = processor.processLinksInIDMLFolder(package, idml);
    analysis.pageSizes = processor.docPageSizes();
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
    EXPECT_EQ(record.value(kLinkPageKey), QStringLiteral("1ª"));
    EXPECT_EQ(record.value(kLinkPathKey), test::samplePath(kSets + QStringLiteral("media/Jacques-Yves_Cousteau.jpg")));
    const QString status = record.value(kLinkStatusKey).toString();
    EXPECT_TRUE(status == kLinkStatusOK || status == kLinkStatusModified) << status.toStdString();
    EXPECT_EQ(record.value(kLinkScaleKey), QStringLiteral("100x101"));

    // Without the folder the link stays where the document recorded it.
    const QVariantMap missing = recordAt(analyse(kSets + QStringLiteral("magazineA-bloc-notes.idml")), 0);
    EXPECT_EQ(missing.value(kLinkStatusKey), kLinkStatusMissing);
    EXPECT_TRUE(missing.value(kLinkPathKey).toString().startsWith(QStringLiteral("/Users/stan/Dropbox/")));
}

TEST(SampleDocuments, RelativeLinksAreFound)
{
    const QVariantMap relative =
        recordAt(analyse(kSets + QStringLiteral("expected/article-1photo_import-xml.idml")), 0);
    EXPECT_EQ(relative.value(kLinkPathKey), test::samplePath(kSets + QStringLiteral("media/bouboune.jpg")));
    EXPECT_NE(relative.value(kLinkStatusKey), kLinkStatusMissing);
    // The size is the one the document recorded, not the file's.
    EXPECT_EQ(relative.value(kLinkSizeBytesKey).toUInt(), 27644U);
}

TEST(SampleDocuments, EmbeddedLinksKeepThePacketsProfile)
{
    const Analysis analysis = analyse(QStringLiteral("idml/placeholders.idml"));
    ASSERT_EQ(analysis.records.size(), 11);
    for (const QVariant& item : analysis.records) {
        const QVariantMap record = item.toMap();
        EXPECT_EQ(record.value(kLinkStatusKey), kLinkStatusEmbedded);
        EXPECT_EQ(record.value(kLinkProfileKey), QStringLiteral("sRGB IEC61966-2.1"));
    }
    EXPECT_EQ(recordAt(analysis, 10).value(kLinkPathKey),
              QStringLiteral("C:/Users/sioch/Desktop/idml samples/Images/ph standard.png"));
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
