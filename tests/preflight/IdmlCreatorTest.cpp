#include "support/IdmlFixtures.h"
#include "support/QtPrinters.h"

#include "host/AppleScriptHost.h"
#include "host/OfflineIdmlHost.h"
#include "host/PdfIdmlController.h"
#include "idml/IdmlDocument.h"
#include "preflight/IdmlCreator.h"
#include "preflight/PreflightReporting.h"
#include "support/RecordingScriptRunner.h"

#include "app/Alerts.h"
#include "app/AppPaths.h"
#include "app/Company.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::preflight;
using namespace quillon::host;

namespace {

class Controller : public QObject {
    Q_OBJECT
    Q_PROPERTY(int lastAlertButtonReturn MEMBER lastAlertButtonReturn)
public:
    int lastAlertButtonReturn = 0;
};

// Gives each test a temporary folder of its own, so the work folder is private.
class IdmlCreatorTest : public ::testing::Test {
protected:
    void SetUp() override { app::setTemporaryFolderOverride(m_temp.path()); }
    void TearDown() override { app::setTemporaryFolderOverride(QString()); }
    QString workFolder() const { return m_temp.filePath(QStringLiteral("Quillon")); }

    QTemporaryDir m_temp;
    QTemporaryDir m_docs;
};

} // namespace

TEST(IdmlCreatorPaths, WorkPathsFollowTheDocumentName)
{
    EXPECT_EQ(QNIDMLCreator::idmlPathForDocument(QStringLiteral("/Jobs/Book v2.indd"), QStringLiteral("/tmp/Quillon")),
              QStringLiteral("/tmp/Quillon/Book v2.idml"));
    EXPECT_EQ(QNIDMLCreator::repairedArchivePathForIDMLPath(QStringLiteral("/tmp/Quillon/Doc.idml")),
              QStringLiteral("/tmp/Quillon/Doc.idml_tmp.zip"));

    const QString folder = QNIDMLCreator::idmlContentsFolderPathForIDMLPath(QStringLiteral("/tmp/Quillon/Doc.idml"));
    EXPECT_TRUE(folder.startsWith(QStringLiteral("/tmp/Quillon/Doc.idml.folder")));
    const QString digits = folder.mid(QStringLiteral("/tmp/Quillon/Doc.idml.folder").size());
    EXPECT_EQ(digits.size(), 5);
    EXPECT_TRUE(digits.toInt() >= 10000);

    // A name whose folder name would reach 243 characters is cut there.
    const QString longName = QString(230, u'x') + QStringLiteral(".idml");
    const QString cut = QNIDMLCreator::idmlContentsFolderPathForIDMLPath(QStringLiteral("/w/") + longName);
    EXPECT_EQ(QFileInfo(cut).fileName().size(), 243);
    EXPECT_TRUE(QFileInfo(cut).fileName().startsWith(longName + QStringLiteral(".folder")));
    EXPECT_EQ(QFileInfo(cut).path(), QStringLiteral("/w"));
}

TEST_F(IdmlCreatorTest, ScriptHostExportUsesTheHfsPathOrElseThePosixPathAndEscapesTheName)
{
    RecordingScriptRunner scripts;
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    QNIDMLCreator creator(host);

    const QString idmlPath = workFolder() + QStringLiteral("/Say \"hi\".idml");
    scripts.pushResult(QStringLiteral("Macintosh HD:tmp:Quillon:Say \"hi\".idml"));
    scripts.pushResult(QString()); // the export, which writes nothing here
    UnpackStep failed = UnpackStep::Export;
    const auto unpacked = creator.processInDesignFileAtPath(QStringLiteral("/Jobs/Say \"hi\".indd"), &failed);

    const QStringList sources = scripts.sources();
    ASSERT_EQ(sources.size(), 2);
    EXPECT_TRUE(sources[1].contains(QStringLiteral("document \"Say \\\"hi\\\".indd\" format InDesign markup to "
                                                   "\"Macintosh HD:tmp:Quillon:Say \\\"hi\\\".idml\"")));
    // Nothing was exported, so the unpacking failed, naming the document.
    ASSERT_FALSE(unpacked);
    EXPECT_EQ(failed, UnpackStep::Unpack);
    EXPECT_EQ(unpacked.error().text(),
              QStringLiteral("/Jobs/Say \"hi\".indd: the export left no IDML file at %1").arg(idmlPath));

    // A failed conversion falls back to the POSIX path.
    scripts.pushError(QStringLiteral("Can't make it into a file."));
    scripts.pushError(QStringLiteral("Cannot export."));
    EXPECT_FALSE(creator.processInDesignFileAtPath(QStringLiteral("/Jobs/a.indd")));
    ASSERT_EQ(scripts.calls().size(), 4u);
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("markup to \"%1/a.idml\" without").arg(workFolder())));
}

TEST_F(IdmlCreatorTest, ExportFailuresShowTheirAlertsWithTheSupportContact)
{
    RecordingScriptRunner scripts;
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    app::ScriptedAlertSink alerts({app::kAlertSecondButton});
    Controller controller;
    QNIDMLCreator creator(host);

    for (const char* refusal :
         {"Cannot handle the request because a modal dialog or alert is active.", "The document is damaged."}) {
        scripts.pushError(QString::fromUtf8(refusal));
        const app::Status exported = creator.exportDoc1ToIDMLAtPath(
            QStringLiteral("HD:a.idml"), QStringLiteral("/a.idml"), QStringLiteral("a.indd"));
        ASSERT_FALSE(exported);
        alertUnpackFailure(UnpackStep::Export, exported.error(), alerts, &controller);
    }
    EXPECT_EQ(controller.lastAlertButtonReturn, app::kAlertFirstButton); // the main-thread alert's answer slot

    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].title, QStringLiteral("Error: A dialog is open in InDesign"));
    EXPECT_EQ(requests[1].title, QStringLiteral("Cannot initiate preflighting"));
    EXPECT_EQ(requests[1].message, app::withSupportContact(QStringLiteral("The document is damaged.")));
}

TEST_F(IdmlCreatorTest, OfflineHostExportsACopyAndHandsOverThePartsItRead)
{
    const QString doc = m_docs.filePath(QStringLiteral("Brochure.idml"));
    QFile::copy(test::samplePath(QStringLiteral("idml/parser.idml")), doc);
    OfflineIdmlHost host;
    ASSERT_TRUE(host.openDocument(doc, true).ok());
    QNIDMLCreator creator(host);

    // Without a record read first, the export is opened from the copy.
    const auto unpacked = creator.processInDesignFileAtPath(doc);
    ASSERT_TRUE(unpacked) << unpacked.error().text().toStdString();
    EXPECT_EQ(unpacked->idmlPath, workFolder() + QStringLiteral("/Brochure.idml"));
    EXPECT_FALSE(unpacked->repaired);
    ASSERT_TRUE(unpacked->parts);
    EXPECT_FALSE(unpacked->parts->preferences().isEmpty());
    EXPECT_EQ(test::readAll(workFolder() + QStringLiteral("/Brochure.idml")), test::readAll(doc));
    EXPECT_TRUE(QDir(workFolder()).entryList({QStringLiteral("*.folder*")}, QDir::Dirs).isEmpty());

    // After the record, the parts it read are handed over, not read again; a stale copy of an
    // earlier run is replaced.
    ASSERT_TRUE(host.pathsAndNameOfDocument(DocumentReference::active()).ok());
    test::writeAll(workFolder() + QStringLiteral("/Brochure.idml"), "stale");
    const auto second = creator.processInDesignFileAtPath(doc);
    ASSERT_TRUE(second);
    EXPECT_EQ(unpacked->parts->parseCount(), 0);
    EXPECT_GT(second->parts->parseCount(), 0);
    EXPECT_EQ(host.idmlDocument(second->idmlPath), nullptr); // handed over once
    EXPECT_EQ(test::readAll(workFolder() + QStringLiteral("/Brochure.idml")), test::readAll(doc));
}

TEST_F(IdmlCreatorTest, UnpackingFailuresShowTheirStageAndNameTheDocument)
{
    app::ScriptedAlertSink alerts;
    OfflineIdmlHost host;

    // Not a zip archive, and no zip tool to repair it with.
    const QString garbage = m_docs.filePath(QStringLiteral("garbage.idml"));
    test::writeAll(garbage, QByteArray(5000, 'g'));
    ASSERT_TRUE(host.openDocument(garbage, true).ok());
    QNIDMLCreator noRepair(host);
    noRepair.setZipTool(m_docs.filePath(QStringLiteral("missing/zip")));
    UnpackStep failed = UnpackStep::Export;
    const auto unrepaired = noRepair.processInDesignFileAtPath(garbage, &failed);
    ASSERT_FALSE(unrepaired);
    EXPECT_EQ(unrepaired.error().file, garbage);
    alertUnpackFailure(failed, unrepaired.error(), alerts, nullptr);

    // An archive with an entry that climbs out of its folder.
    const QString hostile = m_docs.filePath(QStringLiteral("hostile.idml"));
    test::ArchiveEntries entries = test::minimalIdml();
    entries.emplace_back(QStringLiteral("../../../escaped.xml"), "<x/>");
    test::writeIdml(hostile, entries);
    ASSERT_TRUE(host.openDocument(hostile, true).ok());
    QNIDMLCreator creator(host);
    const auto escaping = creator.processInDesignFileAtPath(hostile, &failed);
    ASSERT_FALSE(escaping);
    EXPECT_EQ(escaping.error().where, QStringLiteral("../../../escaped.xml"));
    alertUnpackFailure(failed, escaping.error(), alerts, nullptr);

    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].title, QStringLiteral("Cannot initiate preflighting (stage 2)"));
    EXPECT_TRUE(requests[0].message.startsWith(garbage + QStringLiteral(": ")));
    EXPECT_EQ(requests[1].title, QStringLiteral("Cannot initiate preflighting"));
    EXPECT_TRUE(requests[1].message.contains(QStringLiteral("\"..\"")));
    // Nothing but the IDML copies is left in the work folder.
    EXPECT_EQ(QDir(workFolder()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
              (QStringList{QStringLiteral("garbage.idml"), QStringLiteral("hostile.idml")}));
    EXPECT_FALSE(QFileInfo::exists(m_temp.filePath(QStringLiteral("escaped.xml"))));
}

TEST_F(IdmlCreatorTest, PackageExportsReplaceTheTargetAndUseThePresetDefault)
{
    RecordingScriptRunner scripts;
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    app::Settings settings(m_temp.filePath(QStringLiteral("settings.ini")));
    const QString folder = m_docs.path();
    test::writeAll(folder + QStringLiteral("/Book.pdf"), "old pdf");
    QDir().mkpath(folder + QStringLiteral("/Book.idml/inside"));

    auto controller =
        QNPDFIDMLController::PDFIDMLControllerWithFileItem(QStringLiteral("Book.indd"), folder, host, settings);
    EXPECT_EQ(controller.lastErrorMsg(), QString(""));
    EXPECT_TRUE(controller.exportDocToPDF());
    EXPECT_FALSE(QFileInfo::exists(folder + QStringLiteral("/Book.pdf")));
    EXPECT_TRUE(scripts.lastSource().contains(
        QStringLiteral("to \"%1/Book.pdf\" using PDF export preset \"[Smallest File Size]\"").arg(folder)));

    settings.setValue(QStringLiteral("selectedPDFPreset"), QStringLiteral("[PDF/X-4:2008]"));
    EXPECT_TRUE(controller.exportDocToPDF());
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("using PDF export preset \"[PDF/X-4:2008]\"")));

    EXPECT_TRUE(controller.exportDocToIDML());
    EXPECT_FALSE(QFileInfo::exists(folder + QStringLiteral("/Book.idml")));
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("markup to \"%1/Book.idml\"").arg(folder)));

    scripts.pushError(QStringLiteral("Invalid preset."));
    EXPECT_FALSE(controller.exportDocToPDF());
    EXPECT_EQ(controller.lastErrorMsg(), QStringLiteral("Invalid preset."));
}

TEST_F(IdmlCreatorTest, OfflinePackageExportOfTheDocumentItselfKeepsIt)
{
    const QString doc = m_docs.filePath(QStringLiteral("Flyer.idml"));
    test::writeIdml(doc, test::minimalIdml());
    const QByteArray original = test::readAll(doc);
    OfflineIdmlHost host;
    ASSERT_TRUE(host.openDocument(doc, true).ok());
    app::Settings settings(m_temp.filePath(QStringLiteral("settings.ini")));

    // The document already sits where its IDML export goes.
    auto inPlace =
        QNPDFIDMLController::PDFIDMLControllerWithFileItem(QStringLiteral("Flyer.idml"), m_docs.path(), host, settings);
    EXPECT_TRUE(inPlace.exportDocToIDML());
    EXPECT_EQ(test::readAll(doc), original);

    QTemporaryDir package;
    auto elsewhere = QNPDFIDMLController::PDFIDMLControllerWithFileItem(QStringLiteral("Flyer.idml"), package.path(),
                                                                        host, settings);
    EXPECT_TRUE(elsewhere.exportDocToIDML());
    EXPECT_EQ(test::readAll(package.filePath(QStringLiteral("Flyer.idml"))), original);
    EXPECT_FALSE(elsewhere.exportDocToPDF());
    EXPECT_TRUE(elsewhere.lastErrorMsg().contains(QStringLiteral("needs InDesign")));
}

#include "IdmlCreatorTest.moc"
