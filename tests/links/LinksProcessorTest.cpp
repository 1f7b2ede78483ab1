#include "FakeLinkedFileReader.h"
#include "IdmlFragments.h"
#include "support/QtPrinters.h"

#include "app/Progress.h"
#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "links/AnchoredLinkPageSource.h"
#include "links/DefaultApplication.h"
#include "links/LinkRecordKeys.h"
#include "links/QNIDMLLinksProcessor.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::links;
using test::PlacedLink;

namespace {

class RecordingProgress : public app::ProgressSink {
public:
    void status(const QString& text) override { statuses << text; }
    QStringList statuses;
};

// A document folder holding the unpacked package ("pkg") and the document path ("job.idml").
struct Document {
    QTemporaryDir dir;
    test::FakeLinkedFileReader reader;
    DefaultApplications noApps{{}, {}, {}};
    LinksController controller;

    Document()
    {
        controller.fileReader = &reader;
        controller.defaultApps = &noApps;
    }
    QString package() const { return dir.filePath(QStringLiteral("pkg")); }
    QString docPath() const { return dir.filePath(QStringLiteral("job.idml")); }
    QString file(const QString& name) const { return dir.filePath(name); }

    void write(const std::map<std::string, std::string>& files, std::initializer_list<std::string> order = {})
    {
        test::writePackage(package(), files, order);
    }
    QList<app::Error> warnings; // of the last run
    QVariantList run()
    {
        QNIDMLLinksProcessor processor(controller);
        QVariantList records = processor.processLinksInIDMLFolder(package(), docPath());
        warnings = processor.warnings();
        return records;
    }
};

QVariantMap only(const QVariantList& records)
{
    EXPECT_EQ(records.size(), 1);
    return records.isEmpty() ? QVariantMap() : records.first().toMap();
}

// A present linked file whose modification time is `offsetSeconds` after the link's recorded time,
// 2024-03-01 10:00:00 UTC; returns the link attributes recording that time.
std::string presentFile(const QString& path, qint64 offsetSeconds)
{
    test::writeAll(path, QByteArray(180000, 'x'));
    const QDateTime linkTime(QDate(2024, 3, 1), QTime(10, 0, 0), Qt::UTC);
    QFile file(path);
    file.open(QIODevice::ReadWrite);
    file.setFileTime(linkTime.addSecs(offsetSeconds), QFileDevice::FileModificationTime);
    const qint64 filetime = (linkTime.toSecsSinceEpoch() + 11644473600LL) * 10'000'000LL;
    return "LinkResourceFormat=\"$ID/JPEG\" StoredState=\"Normal\" LinkResourceSize=\"0~2bf20\" "
           "LinkImportModificationTime=\"2024-03-01T11:00:00\" LinkImportStamp=\"file " +
           std::to_string(filetime) + " 180000\"";
}

std::string uriOf(const QString& path)
{
    return "file:" + QUrl::toPercentEncoding(path, "/").toStdString();
}

} // namespace

TEST(LinksProcessor, ARecordHoldsEveryKeyOfThePresentFile)
{
    Document doc;
    const QString picture = doc.file(QStringLiteral("my picture.jpg"));
    PlacedLink link;
    link.uri = uriOf(picture);
    link.linkAttributes = presentFile(picture, 0);
    doc.reader.imageProfiles.insert(picture, QStringLiteral("Adobe RGB (1998)"));
    doc.write({{"Spreads/Spread_u1.xml", test::spreadXml(1, 0, 0, {{"1", 0}}, test::placedLinkXml(link))}});

    const QVariantMap record = only(doc.run());
    EXPECT_EQ(record.value(kLinkIdKey), QStringLiteral("432"));
    EXPECT_EQ(record.value(kLinkNameKey), QStringLiteral("my picture.jpg"));
    EXPECT_EQ(record.value(kLinkPathKey), picture);
    EXPECT_FALSE(record.value(kLinkVolumeKey).toString().isEmpty());
    EXPECT_EQ(record.value(kLinkKindKey), kLinkKindJPEG);
    EXPECT_EQ(record.value(kLinkDateKey).toDateTime().toUTC(), QDateTime(QDate(2024, 3, 1), QTime(10, 0, 0), Qt::UTC));
    EXPECT_EQ(record.value(kLinkStatusKey), kLinkStatusOK);
    EXPECT_EQ(record.value(kLinkSizeBytesKey).toUInt(), 180000U);
    EXPECT_EQ(record.value(kLinkAppKey), QStringLiteral("?"));
    EXPECT_EQ(record.value(kLinkDocPathKey), doc.docPath());
    EXPECT_EQ(record.value(kLinkScaleKey), QStringLiteral("50"));
    EXPECT_EQ(record.value(kLinkEffectiveResKey), QStringLiteral("150"));
    EXPECT_EQ(record.value(kLinkActualResKey), QStringLiteral("300"));
    EXPECT_EQ(record.value(kLinkColorKey), QStringLiteral("RGB"));
    EXPECT_EQ(record.value(kLinkPageKey), QStringLiteral("1"));
    EXPECT_EQ(record.value(kLinkPrintKey), kLinkPrints);
    EXPECT_EQ(record.value(kLinkParentIdKey), QStringLiteral("419"));
    EXPECT_EQ(record.value(kLinkProfileKey), QStringLiteral("Adobe RGB (1998)"));
    EXPECT_EQ(doc.reader.lastImageType, QStringLiteral("jpg"));
    EXPECT_FALSE(record.contains(kLinkIsAnchoredKey));
}

TEST(LinksProcessor, AnHourIsToleratedInOneDirectionOnly)
{
    // Runs of whole documents show both statuses in the other tests; here the file's own time.
    QTemporaryDir dir;
    const QString picture = dir.filePath(QStringLiteral("p.jpg"));
    const QDateTime recorded(QDate(2024, 3, 1), QTime(10, 0, 0), Qt::UTC);
    for (const auto& [offset, status] : {std::pair{-3600, kLinkStatusOK}, std::pair{3600, kLinkStatusModified},
                                         std::pair{0, kLinkStatusOK}, std::pair{-1, kLinkStatusModified}}) {
        presentFile(picture, offset);
        EXPECT_EQ(LinkRecordBuilder::statusOfLinkAtPath(picture, recorded), status) << offset;
    }
    EXPECT_EQ(LinkRecordBuilder::statusOfLinkAtPath(QStringLiteral("/no/such/file.jpg"), QDateTime::currentDateTime()),
              kLinkStatusMissing);
}

TEST(LinksProcessor, EmbeddedLinksAreNeverLookedAtOnDisk)
{
    Document doc;
    const QString picture = doc.file(QStringLiteral("here.png"));
    test::writeAll(picture, "png");
    PlacedLink link;
    link.uri = uriOf(picture);
    link.linkAttributes = "LinkResourceFormat=\"$ID/\" StoredState=\"Embedded\"";
    doc.write({{"Spreads/Spread_u1.xml", test::spreadXml(1, 0, 0, {{"1", 0}}, test::placedLinkXml(link))}});
    const QVariantMap record = only(doc.run());
    EXPECT_EQ(record.value(kLinkStatusKey), kLinkStatusEmbedded);
    EXPECT_EQ(record.value(kLinkAppKey), QStringLiteral("-"));
    EXPECT_EQ(record.value(kLinkVolumeKey), QString());
    EXPECT_EQ(record.value(kLinkKindKey), kLinkKindPNG);
    EXPECT_EQ(doc.reader.imageReads, 0);
}

TEST(LinksProcessor, LinksFromAnotherComputerAreFoundByName)
{
    Document doc;
    QDir().mkpath(doc.file(QStringLiteral("Links")));
    QDir().mkpath(doc.file(QStringLiteral("extra")));
    const QString inLinks = doc.file(QStringLiteral("Links/a.jpg"));
    const QString inExtra = doc.file(QStringLiteral("extra/b.jpg"));
    PlacedLink a;
    a.uri = "file:C:/Users/someone/Job/Links/a.jpg";
    a.linkAttributes = presentFile(inLinks, 0);
    PlacedLink b;
    b.linkSelf = "u2";
    b.uri = "file:/Volumes/Server/Job/b.jpg";
    b.linkAttributes = presentFile(inExtra, 7200);
    PlacedLink c;
    c.linkSelf = "u3";
    c.uri = "file:/Volumes/Server/Job/c.jpg";
    doc.controller.linkFolders = {doc.file(QStringLiteral("extra"))};
    doc.write({{"Spreads/Spread_u1.xml",
                test::spreadXml(1, 0, 0, {{"1", 0}},
                                test::placedLinkXml(a) + test::placedLinkXml(b) + test::placedLinkXml(c))}});

    const QVariantList records = doc.run();
    ASSERT_EQ(records.size(), 3);
    EXPECT_EQ(records[0].toMap().value(kLinkPathKey), inLinks);
    EXPECT_EQ(records[0].toMap().value(kLinkStatusKey), kLinkStatusOK);
    EXPECT_EQ(records[1].toMap().value(kLinkPathKey), inExtra);
    EXPECT_EQ(records[1].toMap().value(kLinkStatusKey), kLinkStatusModified);
    EXPECT_EQ(records[2].toMap().value(kLinkPathKey), QStringLiteral("/Volumes/Server/Job/c.jpg"));
    EXPECT_EQ(records[2].toMap().value(kLinkStatusKey), kLinkStatusMissing);
    EXPECT_EQ(records[2].toMap().value(kLinkVolumeKey), QStringLiteral("?"));
}

TEST(LinksProcessor, StoriesAreReadOnlyWhenTheSpreadsHoldTooFewLinks)
{
    Document doc;
    PlacedLink onSpread;
    PlacedLink anchored;
    anchored.linkSelf = "u20";
    anchored.uri = "file:/nowhere/anchored.psd";
    doc.write(
        {{"Spreads/Spread_u1.xml", test::spreadXml(2, 1, 600, {{"2", -612}, {"3", 0}},
                                                   test::placedLinkXml(onSpread) + test::textFrameXml("ust", 20))},
         {"Stories/Story_ust.xml", test::storyXml("ust", test::placedLinkXml(anchored))}},
        {"Spreads/Spread_u1.xml"});

    doc.controller.numberOfLinksInDoc = 1;
    EXPECT_EQ(doc.run().size(), 1);

    doc.controller.numberOfLinksInDoc = 2;
    const QVariantList records = doc.run();
    ASSERT_EQ(records.size(), 2);
    const QVariantMap record = records[1].toMap();
    EXPECT_EQ(record.value(kLinkIsAnchoredKey), QVariant(true));
    EXPECT_EQ(record.value(kLinkIdKey), QStringLiteral("32"));
    EXPECT_EQ(record.value(kLinkPageKey), QStringLiteral("3ª"));
    EXPECT_EQ(record.value(kLinkSortOrderOfPageInDocKey).toDouble(), 601.0);

    // Without a count from the host the stories are read.
    doc.controller.numberOfLinksInDoc = -1;
    EXPECT_EQ(doc.run().size(), 2);
}

TEST(LinksProcessor, AnchoredPagesFollowTheDesignmapOrderOfSpreads)
{
    Document doc;
    PlacedLink anchored;
    PlacedLink lost;
    lost.linkSelf = "u21";
    doc.write({{"Spreads/Spread_a.xml", test::spreadXml(1, 0, 0, {{"5", 0}}, test::textFrameXml("ust", 1))},
               {"Spreads/Spread_b.xml", test::spreadXml(1, 0, 900, {{"3", 0}}, test::textFrameXml("ust", 1))},
               {"Stories/Story_ust.xml", test::storyXml("ust", test::placedLinkXml(anchored))},
               {"Stories/Story_lost.xml", test::storyXml("lost", test::placedLinkXml(lost))}},
              {"Spreads/Spread_b.xml", "Spreads/Spread_a.xml", "Stories/Story_ust.xml", "Stories/Story_lost.xml"});
    const QVariantList records = doc.run();
    ASSERT_EQ(records.size(), 2);
    // Stories are read in file-name order: "Story_lost" before "Story_ust".
    EXPECT_EQ(records[0].toMap().value(kLinkPageKey), QStringLiteral("ª"));
    EXPECT_EQ(records[0].toMap().value(kLinkSortOrderOfPageInDocKey).toDouble(), 1.0);
    EXPECT_EQ(records[1].toMap().value(kLinkPageKey), QStringLiteral("3ª"));
    EXPECT_EQ(records[1].toMap().value(kLinkSortOrderOfPageInDocKey).toDouble(), 900.0);

    // Sharing its pass with another reader, which meets the stories in the designmap's order, the
    // analysis keeps its own.
    struct Reader final : idml::PartVisitor {
        QStringList met;
        QStringList partNames(const idml::IdmlDocument& document) const override { return document.stories(); }
        void visit(const QString& name, const app::Result<std::shared_ptr<const idml::XmlPart>>&) override
        {
            met << name;
        }
    } reader;
    const auto document = idml::IdmlDocument::fromFolder(doc.package());
    ASSERT_TRUE(document.ok());
    QNIDMLLinksProcessor processor(doc.controller);
    const QVariantList shared = processor.processLinksInDocument(**document, doc.docPath(), {&reader});
    ASSERT_EQ(shared.size(), 2);
    for (const qsizetype i : {0, 1})
        EXPECT_EQ(shared[i].toMap().value(kLinkPageKey), records[i].toMap().value(kLinkPageKey)) << i;
    EXPECT_EQ(reader.met,
              (QStringList{QStringLiteral("Stories/Story_ust.xml"), QStringLiteral("Stories/Story_lost.xml")}));
}

TEST(LinksProcessor, AHostCanTellThePageOfAnchoredLinks)
{
    struct Host : AnchoredLinkPageSource {
        QString pageNameForLinkID(const QString& linkId, const QString& storyId) override
        {
            asked << linkId + u'/' + storyId;
            return QStringLiteral("7");
        }
        QStringList asked;
    } host;
    Document doc;
    doc.controller.anchoredLinkPages = &host;
    doc.write({{"Stories/Story_s.xml", test::storyXml("us9", test::placedLinkXml(PlacedLink()))}});
    const QVariantMap record = only(doc.run());
    EXPECT_EQ(record.value(kLinkPageKey), QStringLiteral("7ª"));
    EXPECT_EQ(host.asked, QStringList{QStringLiteral("432/us9")});
}

TEST(LinksProcessor, MastersComeFirstThenSpreadsInByteOrderOfTheirNames)
{
    Document doc;
    const auto linkNamed = [](const std::string& self) {
        PlacedLink link;
        link.linkSelf = self;
        return test::placedLinkXml(link);
    };
    doc.write({{"Spreads/Spread_a.xml", test::spreadXml(1, 0, 10, {{"2", 0}}, linkNamed("u3"))},
               {"Spreads/Spread_B.xml", test::spreadXml(1, 0, 0, {{"1", 0}}, linkNamed("u2"))},
               {"Spreads/.hidden.xml", test::spreadXml(1, 0, 0, {{"h", 0}}, linkNamed("u9"))},
               {"MasterSpreads/MasterSpread_z.xml", test::masterSpreadXml("A-Master", linkNamed("u1"))}});
    RecordingProgress progress;
    doc.controller.progress = &progress;
    QNIDMLLinksProcessor processor(doc.controller);
    const QVariantList records = processor.processLinksInIDMLFolder(doc.package(), doc.docPath());
    ASSERT_EQ(records.size(), 3);
    EXPECT_EQ(records[0].toMap().value(kLinkIdKey), QStringLiteral("1"));
    EXPECT_EQ(records[0].toMap().value(kLinkPageKey), QStringLiteral("A-Master"));
    EXPECT_FALSE(records[0].toMap().contains(kLinkSortOrderOfPageInDocKey));
    EXPECT_EQ(records[1].toMap().value(kLinkIdKey), QStringLiteral("2"));
    EXPECT_EQ(records[2].toMap().value(kLinkIdKey), QStringLiteral("3"));
    EXPECT_EQ(records[2].toMap().value(kLinkSortOrderOfPageInDocKey).toDouble(), 10.0);
    EXPECT_EQ(progress.statuses, (QStringList{QStringLiteral("Preflighting links: Master Spread 1"),
                                              QStringLiteral("Preflighting links: Spread 1"),
                                              QStringLiteral("Preflighting links: Spread 2")}));
    ASSERT_EQ(processor.docPageSizes().size(), 1);
    EXPECT_EQ(processor.docPageSizes().value({QStringLiteral("612"), QStringLiteral("792")}),
              (QStringList{QStringLiteral("1"), QStringLiteral("2")}));

    RecordingProgress quiet;
    doc.controller.progress = &quiet;
    doc.controller.isBatchPreflight = true;
    EXPECT_EQ(doc.run().size(), 3);
    EXPECT_TRUE(quiet.statuses.isEmpty());
}

TEST(LinksProcessor, TheLinkDataTreeHasTheDataFileShapeAndACancelledRunLeavesItEmpty)
{
    Document doc;
    doc.write({{"Spreads/Spread_1.xml", test::spreadXml(1, 0, 0, {{"1", 0}}, test::placedLinkXml(PlacedLink()))}});
    QNIDMLLinksProcessor processor(doc.controller);
    processor.processLinksInIDMLFolder(doc.package(), doc.docPath());
    const QVariantMap& root = processor.linkDataTree();
    ASSERT_EQ(root.keys(), QStringList{doc.docPath()});
    const QVariantMap node = root.value(doc.docPath()).toMap();
    EXPECT_EQ(node.value(app::kGroupNameKey), QStringLiteral("job.idml"));
    EXPECT_EQ(node.value(app::kGroupIsDockKey), QVariant(true));
    const QVariantList children = node.value(app::kGroupChildrenKey).toList();
    ASSERT_EQ(children.size(), 1);
    EXPECT_EQ(children[0].toMap().value(kLinkPageKey), QStringLiteral("1"));
    EXPECT_EQ(children[0].toMap().value(kLinkSizeBytesKey).toULongLong(), 180000U);

    app::CancelFlag cancel;
    cancel.cancel();
    doc.controller.cancel = &cancel;
    QNIDMLLinksProcessor cancelled(doc.controller);
    EXPECT_TRUE(cancelled.processLinksInIDMLFolder(doc.package(), doc.docPath()).isEmpty());
    EXPECT_TRUE(cancelled.linkDataTree().isEmpty());
}

TEST(LinksProcessor, FramesGraphicsAndFormatsShapeTheRecord)
{
    Document doc;
    const QString art = doc.file(QStringLiteral("art.ai"));
    PlacedLink pdf;
    pdf.uri = uriOf(art);
    pdf.linkAttributes = presentFile(art, 0);
    pdf.linkAttributes.replace(pdf.linkAttributes.find("$ID/JPEG"), 8, "$ID/Adobe Portable Document Format (PDF)");
    pdf.graphic = "PDF";
    pdf.graphicAttributes = "ItemTransform=\"1 0 0 1 0 0\"";
    pdf.frameAttributes = "Nonprinting=\"true\"";
    PlacedLink web;
    web.linkSelf = "u2";
    web.uri = "http://example.com/a.jpg";
    PlacedLink bare;
    bare.linkSelf = "u3";
    bare.linkAttributes.clear();
    bare.graphicAttributes = "Nonprinting=\"true\" Space=\"$ID/kLinksPanelCMYKWithSpot\"";
    doc.reader.aiColorMode = QStringLiteral("RGB");
    doc.write({{"Spreads/Spread_1.xml", test::spreadXml(1, 0, 0, {{"1", 0}},
                                                        test::placedLinkXml(pdf) + test::placedLinkXml(web) +
                                                            test::placedLinkXml(bare) + "<Link/>")}});
    const QVariantList records = doc.run();
    ASSERT_EQ(records.size(), 2);
    const QVariantMap ai = records[0].toMap();
    EXPECT_EQ(ai.value(kLinkKindKey), kLinkKindPDFFromAI);
    EXPECT_EQ(ai.value(kLinkColorKey), QStringLiteral("RGB"));
    EXPECT_EQ(ai.value(kLinkPrintKey), kLinkNonPrinting);
    EXPECT_EQ(ai.value(kLinkActualResKey), QStringLiteral("-"));
    EXPECT_FALSE(ai.contains(kLinkProfileKey));
    const QVariantMap missing = records[1].toMap();
    EXPECT_EQ(missing.value(kLinkStatusKey), QString());
    EXPECT_EQ(missing.value(kLinkColorKey), QStringLiteral("CMYK + Spot"));
    EXPECT_EQ(missing.value(kLinkPrintKey), kLinkNonPrinting);
    EXPECT_EQ(missing.value(kLinkSizeKey), QStringLiteral("1 KB"));
    EXPECT_EQ(missing.value(kLinkKindKey), kLinkKindJPEG);
}

TEST(LinksProcessor, HostileFilesNeverStopTheRun)
{
    Document doc;
    std::string laughs = "<?xml version=\"1.0\"?><!DOCTYPE lolz [<!ENTITY lol \"lol\">";
    for (int i = 1; i < 10; ++i)
        laughs += "<!ENTITY lol" + std::to_string(i) + " \"" + [&] {
            std::string refs;
            for (int j = 0; j < 10; ++j)
                refs += "&lol" + (i == 1 ? std::string() : std::to_string(i - 1)) + ";";
            return refs;
        }() + "\">";
    laughs += "]><idPkg:Spread><Spread PageCount=\"1\"><F/><Page Name=\"&lol9;\"/>" +
              test::placedLinkXml(PlacedLink()) + "</Spread></idPkg:Spread>";
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<g>";
    deep += "<Link Self=\"u7\" LinkResourceURI=\"file:/deep.jpg\"/>";
    for (int i = 0; i < 100000; ++i)
        deep += "</g>";
    PlacedLink good;
    good.linkSelf = "u5";
    doc.write({{"Spreads/Spread_1.xml", "\x89PNG\r\n this is not XML <<<"},
               {"Spreads/Spread_2.xml", laughs},
               {"Spreads/Spread_3.xml", ""},
               {"Spreads/Spread_4.xml", "<r>" + deep + "</r>"},
               {"Spreads/Spread_5.xml", test::spreadXml(1, 0, 0, {{"1", 0}}, test::placedLinkXml(good) + "<Link/>")},
               {"Spreads/Spread_6.xml", ""},
               {"Stories/Story_1.xml", "<unclosed"}});
    // A 100 MB attribute.
    {
        QFile big(doc.package() + QStringLiteral("/Spreads/Spread_6.xml"));
        ASSERT_TRUE(big.open(QIODevice::WriteOnly));
        big.write("<idPkg:Spread><Spread PageCount=\"1\" Huge=\"");
        const QByteArray chunk(1 << 20, 'a');
        for (int i = 0; i < 100; ++i)
            big.write(chunk);
        big.write(QByteArray("\"><F/><Page Name=\"big\"/>") + QByteArray::fromStdString(test::placedLinkXml(good)) +
                  "</Spread></idPkg:Spread>");
    }
    doc.controller.numberOfLinksInDoc = 100;
    const QVariantList records = doc.run();
    QStringList ids;
    for (const QVariant& record : records)
        ids << record.toMap().value(kLinkIdKey).toString();
    // The laughs stay unexpanded; the deep link has no page; the spread of a 100 MB attribute is
    // refused by its size (without being read whole) and named.
    EXPECT_EQ(ids, (QStringList{QStringLiteral("432"), QStringLiteral("7"), QStringLiteral("5")}));
    EXPECT_EQ(records[0].toMap().value(kLinkPageKey).toString().size(), 6) << "&lol9; kept as it is";
    QStringList warnings;
    for (const app::Error& warning : doc.warnings)
        warnings << warning.text();
    EXPECT_EQ(warnings.filter(QStringLiteral("Spreads/Spread_6.xml: too large to read")).size(), 1)
        << warnings.join(u'\n').toStdString();
}
