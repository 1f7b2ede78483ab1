#include "support/QtPrinters.h"

#include "support/IdmlFixtures.h"

#include "host/OfflineIdmlHost.h"
#include "idml/IdmlDocument.h"
#include "inspection/DocInfo.h"
#include "inspection/PageSizes.h"
#include "preflight/IdmlCreator.h"

#include "app/Alerts.h"
#include "app/AppPaths.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::preflight;
using namespace quillon::inspection;
using namespace quillon::host;

namespace {

struct SampleFacts {
    const char* file;
    const char* pages;
    const char* links;
    const char* version;
    const char* units;
    const char* bleed;
    const char* slug;
    const char* pageSize;
};

// Read from the files themselves: one sample for each unit, bleed and page-size case.
const SampleFacts kSamples[] = {
    {"4-pages-layers-with-guides.idml", "4", "0", "7.5", "Millimeters", "-", "-", "200 x 268 mm"},
    {"Minimalist Magazine Layout (link without StoredState).idml", "60", "1", "17.0", "Points", "-", "-", "<mixed>"},
    {"freshers.idml", "8", "24", "6.0", "Millimeters", "-", "-", "?"},
    {"helloworld-1.idml", "1", "0", "13.0", "Picas", "-", "-", "612 x 792 pt"},
    {"interview.idml", "1", "0", "15.1", "Millimeters", "5 mm", "-", "230 x 297 mm"},
    {"manual_template_example_mixed_ink.idml", "2", "78", "21.4", "Millimeters", "-", "-", "148 x 210 mm"},
    {"parser.idml", "1", "1", "20.3", "Millimeters", "3 mm", "-", "148 x 210 mm"},
    {"placeholders.idml", "1", "11", "15.0", "Pixels", "-", "-", "1066.4 x 799.8 px"},
    {"sets/anuga/demo-web/public/"
     "Anuga_2025_28732_Event_Themen_Speaker_Templates_1080x1350px_with_green_rect_where_finally_the_logo_renders.idml",
     "4", "12", "21.0", "Pixels", "-", "-", "1439.64 x 1799.55 px"},
    {"sets/simpleidml/tests/regressiontests/IDML/article-1photo.idml", "1", "1", "10.0", "Millimeters", "-", "-",
     "200 x 268 mm"},
    {"tripple.idml", "6", "15", "20.4", "Points", "-", "-", "793.7 x 1133.86 pt"},
};

class OfflineIdmlHostTest : public ::testing::Test {
protected:
    void SetUp() override { app::setTemporaryFolderOverride(m_temp.path()); }
    void TearDown() override { app::setTemporaryFolderOverride(QString()); }
    QTemporaryDir m_temp;
    QTemporaryDir m_docs;
};

} // namespace

TEST_F(OfflineIdmlHostTest, EverySampleGivesItsRecordAndDocumentInformation)
{
    for (const SampleFacts& sample : kSamples) {
        SCOPED_TRACE(sample.file);
        const QString path = test::samplePath(QStringLiteral("idml/") + QString::fromUtf8(sample.file));
        OfflineIdmlHost host;
        ASSERT_TRUE(host.openDocument(path, true).ok());
        const auto record = host.pathsAndNameOfDocument(DocumentReference::active());
        ASSERT_TRUE(record.ok()) << record.error().text().toStdString();
        EXPECT_TRUE(record->hfsPath.isEmpty());
        EXPECT_EQ(record->posixPath, QFileInfo(path).absoluteFilePath());
        EXPECT_EQ(record->fileName, QFileInfo(path).fileName());
        EXPECT_EQ(record->pageCount, QLatin1String(sample.pages));
        EXPECT_EQ(record->linkCount, QLatin1String(sample.links));
        EXPECT_EQ(record->InDesignVersion, QLatin1String(sample.version));

        const auto document = idml::IdmlDocument::open(path, m_temp.path());
        ASSERT_TRUE(document.ok()) << document.error().text().toStdString();
        QNDocInfo info = QNDocInfo::docInfoWithRecord(*record);
        EXPECT_TRUE(info.parseDocInfoInDocument(**document).ok());
        info.setDocPageSizesDict(pageSizesInDocument(**document));
        EXPECT_EQ(info.horizMeasurementUnits(), QLatin1String(sample.units));
        EXPECT_EQ(info.bleedStr(), QLatin1String(sample.bleed));
        EXPECT_EQ(info.slugStr(), QLatin1String(sample.slug));
        EXPECT_EQ(info.pageSizeStr(), QLatin1String(sample.pageSize));
        EXPECT_EQ(info.fileSize(), QFileInfo(path).size());
        EXPECT_FALSE(info.modDateStr().isEmpty());
    }
}

TEST_F(OfflineIdmlHostTest, PathsThatAreNotIdmlFilesAreRefusedWithWhatToDo)
{
    OfflineIdmlHost host;
    const QString indd = m_docs.filePath(QStringLiteral("Book.indd"));
    test::writeAll(indd, "binary");
    const auto refusedIndd = host.openDocument(indd, true);
    ASSERT_FALSE(refusedIndd.ok());
    EXPECT_EQ(refusedIndd.error().file, indd);
    EXPECT_TRUE(refusedIndd.error().message.contains(QStringLiteral("InDesign Markup (IDML)")));

    const QString pdf = m_docs.filePath(QStringLiteral("Book.pdf"));
    test::writeAll(pdf, "%PDF");
    EXPECT_TRUE(host.openDocument(pdf, true).error().message.contains(QStringLiteral("not an IDML file")));
    EXPECT_TRUE(host.openDocument(m_docs.filePath(QStringLiteral("gone.idml")), true)
                    .error()
                    .message.contains(QStringLiteral("does not exist")));
    EXPECT_TRUE(host.openDocuments().isEmpty());

    const auto none = host.pathsAndNameOfDocument(DocumentReference::active());
    ASSERT_FALSE(none.ok());
    EXPECT_TRUE(none.error().message.contains(QStringLiteral("No document is open")));
}

TEST_F(OfflineIdmlHostTest, TheLastOpenedDocumentIsActiveAndOthersAreFoundByName)
{
    const QString first = m_docs.filePath(QStringLiteral("First.idml"));
    const QString second = m_docs.filePath(QStringLiteral("Second.IDML"));
    test::writeIdml(first, test::minimalIdml());
    test::writeIdml(second, test::minimalIdml());
    OfflineIdmlHost host;
    ASSERT_TRUE(host.openDocument(first, true).ok());
    ASSERT_TRUE(host.activateAndOpenDocument(second).ok());
    EXPECT_EQ(*host.fullNameOfDocument(DocumentReference::active()), second);
    EXPECT_EQ(host.pathsAndNameOfDocument(DocumentReference::named(QStringLiteral("First.idml")))->fileName,
              QStringLiteral("First.idml"));
    EXPECT_FALSE(host.fullNameOfDocument(DocumentReference::named(QStringLiteral("Third.idml"))).ok());

    EXPECT_TRUE(host.closeDocument(QStringLiteral("Second.IDML")).ok());
    EXPECT_EQ(*host.fullNameOfDocument(DocumentReference::active()), first);
    host.closeDocumentIfOpen(first);
    EXPECT_TRUE(host.openDocuments().isEmpty());
    EXPECT_FALSE(host.closeDocument(QStringLiteral("First.idml")).ok());
}

TEST_F(OfflineIdmlHostTest, RecordCountsPagesOfSpreadsAndFileLinksEverywhere)
{
    const QByteArray links =
        "<Rectangle><Image><Link Self=\"l1\" LinkResourceURI=\"file:/a.tif\"/></Image></Rectangle>"
        "<Rectangle><Image><Link Self=\"l2\" LinkResourceURI=\"http://x/b.jpg\"/></Image></Rectangle>"
        "<Group><Rectangle><EPS><Link Self=\"l3\" LinkResourceURI=\"file:C:/c.eps\"/></EPS>"
        "</Rectangle></Group>";
    const QString path = m_docs.filePath(QStringLiteral("Counts.idml"));
    test::writeIdml(
        path, {
                  {QStringLiteral("designmap.xml"),
                   test::designmapXml({QStringLiteral("MasterSpreads/MasterSpread_m.xml"),
                                       QStringLiteral("Spreads/Spread_a.xml"), QStringLiteral("Spreads/Spread_b.xml"),
                                       QStringLiteral("Stories/Story_s.xml")},
                                      QStringLiteral("19.5"))},
                  {QStringLiteral("MasterSpreads/MasterSpread_m.xml"),
                   "<idPkg:MasterSpread xmlns:idPkg=\"p\"><MasterSpread><Page Name=\"A\"/><Page Name=\"B\"/>" + links +
                       "</MasterSpread></idPkg:MasterSpread>"},
                  {QStringLiteral("Spreads/Spread_a.xml"),
                   test::spreadXml({QStringLiteral("0 0 792 612"), QString()}, links)},
                  {QStringLiteral("Spreads/Spread_b.xml"), test::spreadXml({QStringLiteral("0 0 792 612")})},
                  {QStringLiteral("Stories/Story_s.xml"),
                   "<idPkg:Story xmlns:idPkg=\"p\"><Story>" + links + "</Story></idPkg:Story>"},
              });
    OfflineIdmlHost host;
    ASSERT_TRUE(host.openDocument(path, true).ok());
    const auto record = host.pathsAndNameOfDocument(DocumentReference::active());
    ASSERT_TRUE(record.ok()) << record.error().text().toStdString();
    EXPECT_EQ(record->pageCount, QStringLiteral("3")); // master pages are not counted
    EXPECT_EQ(record->linkCount, QStringLiteral("6")); // two file links in each of three parts
    EXPECT_EQ(record->InDesignVersion, QStringLiteral("19.5"));
}

TEST_F(OfflineIdmlHostTest, WhatOnlyInDesignDoesFailsWithItsOwnWords)
{
    const QString path = m_docs.filePath(QStringLiteral("Doc.idml"));
    test::writeIdml(path, test::minimalIdml());
    OfflineIdmlHost host;
    ASSERT_TRUE(host.openDocument(path, true).ok());

    const auto pdf = host.exportDocumentToPdf(QStringLiteral("Doc.idml"), m_docs.filePath(QStringLiteral("Doc.pdf")),
                                              QStringLiteral("[Press Quality]"));
    ASSERT_FALSE(pdf.ok());
    EXPECT_TRUE(pdf.error().message.contains(QStringLiteral("needs InDesign")));
    EXPECT_FALSE(QFileInfo::exists(m_docs.filePath(QStringLiteral("Doc.pdf"))));
    EXPECT_FALSE(host.pdfExportPresetNames().ok());
    EXPECT_FALSE(host.invokePackageCommand().ok());
    EXPECT_FALSE(host.saveDocument(DocumentReference::active(), m_docs.filePath(QStringLiteral("Doc.indd"))).ok());

    QTemporaryDir package;
    ASSERT_TRUE(host.packageDocument(QStringLiteral("Doc.idml"), package.path()).ok());
    EXPECT_EQ(test::readAll(package.filePath(QStringLiteral("Doc.idml"))), test::readAll(path));
    ASSERT_TRUE(host.saveDocument(DocumentReference::active(), package.filePath(QStringLiteral("Copy.idml"))).ok());
    EXPECT_EQ(test::readAll(package.filePath(QStringLiteral("Copy.idml"))), test::readAll(path));
    // Saving onto itself leaves the document as it was.
    EXPECT_TRUE(host.saveDocument(DocumentReference::active(), path).ok());
    EXPECT_EQ(test::readAll(package.filePath(QStringLiteral("Copy.idml"))), test::readAll(path));
}
