#include "support/IdmlFixtures.h"
#include "support/QtPrinters.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "host/AppleScriptHost.h"
#include "host/OfflineIdmlHost.h"
#include "preflight/BatchPreflight.h"
#include "preflight/ControlCenter.h"
#include "preflight/DocumentWarnings.h"
#include "preflight/PreflightReporting.h"
#include "preflight/PreflightResultsSink.h"
#include "support/RecordingScriptRunner.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <mutex>
#include <stdexcept>

using namespace quillon;
using namespace quillon::preflight;
using namespace quillon::host;

namespace {

// Everything the driver shows, as lines: "stage links Preflighting links...", "value 4", ...
class RecordingProgress : public app::ProgressSink {
public:
    void stage(const QString& name, const QString& text) override
    {
        add(QStringLiteral("stage %1 %2").arg(name, text.isNull() ? QStringLiteral("(none)") : text).trimmed());
        if (onStage)
            onStage(name);
    }
    void setMaximum(double maximum) override { add(QStringLiteral("maximum %1").arg(maximum)); }
    void setValue(double value) override { add(QStringLiteral("value %1").arg(value)); }
    void increment(double by) override { add(QStringLiteral("increment %1").arg(by)); }
    void status(const QString& text) override { add(QStringLiteral("status %1").arg(text)); }
    void finished() override { add(QStringLiteral("finished")); }

    QStringList lines() const
    {
        std::lock_guard lock(m_mutex);
        return m_lines;
    }
    QStringList stages() const { return lines().filter(QRegularExpression(QStringLiteral("^stage "))); }

    std::function<void(const QString& stage)> onStage;

private:
    void add(const QString& line)
    {
        std::lock_guard lock(m_mutex);
        m_lines << line;
    }
    mutable std::mutex m_mutex;
    QStringList m_lines;
};

// Records what the driver hands over.
class RecordingResults : public PreflightResultsSink {
public:
    void clearAllResults() override { calls << QStringLiteral("clear"); }
    void showDocument(const QString& name, const QString&) override { calls << QStringLiteral("show ") + name; }
    JudgingInputs judgingInputs() override { return {{{QStringLiteral("Name"), QStringLiteral("Strict")}}, true}; }
    void setItems(PreflightOutcome& outcome) override
    {
        calls << QStringLiteral("setItems");
        handedOver = outcome.linkData;
        presetHandedOver = outcome.judging.preset.value(QStringLiteral("Name")).toString();
    }
    void setItemsFromDataFiles(const QString&) override { calls << QStringLiteral("setItemsFromDataFiles"); }
    void populateSummaryAndDocInfo(QNDocInfo& docInfo) override
    {
        calls << QStringLiteral("summary ") + docInfo.docName();
        docInfo.setHasPreflightErrors(true);
    }
    app::Result<QString> createTextReport(const QString& folder, const QString& paraStylesReport,
                                          const QNDocInfo& docInfo) override
    {
        calls << QStringLiteral("report %1 [%2] %3").arg(folder, paraStylesReport, docInfo.docName());
        return folder + QStringLiteral("/report.txt");
    }
    void presetsPopup(const QString& title) override { calls << QStringLiteral("preset ") + title; }

    QStringList calls;
    QVariantMap handedOver;
    QString presetHandedOver;
};

// The offline host with the record and the inspections under the test's control.
class FakeHost : public OfflineIdmlHost {
public:
    app::Result<inspection::DocumentRecord> pathsAndNameOfDocument(const DocumentReference& document) override
    {
        app::Result<inspection::DocumentRecord> record = OfflineIdmlHost::pathsAndNameOfDocument(document);
        if (record && linkCount)
            record->linkCount = *linkCount;
        return record;
    }
    app::Result<inspection::Inspected<QVariantList>> processFonts(const inspection::DocumentRecord& record,
                                                                  const idml::IdmlDocument* document,
                                                                  const app::CancelFlag*) override
    {
        inspections << QStringLiteral("fonts ") + record.fileName;
        documentOfInspection = document;
        return inspection::Inspected<QVariantList>{{}, {kSkippedStory, kSkippedStory}};
    }
    app::Result<inspection::Inspected<inspection::ColorInspection>>
    processColors(const inspection::DocumentRecord& record, const idml::IdmlDocument*,
                  const QString& registrationInTextFlag, const app::CancelFlag*) override
    {
        inspections << QStringLiteral("colors %1 %2").arg(record.fileName, registrationInTextFlag);
        return app::makeError(QStringLiteral("the swatches could not be read"), QStringLiteral("Graphic.xml"));
    }
    app::Result<inspection::Inspected<QString>> paraReport(const QString& docName, const idml::IdmlDocument*) override
    {
        return inspection::Inspected<QString>{QStringLiteral("styles of ") + docName, {}};
    }

    inline static const app::Error kSkippedStory =
        app::makeError(QStringLiteral("not readable XML at byte 14"), QStringLiteral("Stories/Story_u1a.xml"));

    std::optional<QString> linkCount;
    QStringList inspections;
    const idml::IdmlDocument* documentOfInspection = nullptr;
};

class RecordingBatch : public BatchPreflight {
public:
    std::optional<QueuedDocument> nextDocument() override { return queued; }
    void setBatchPreflightProgressValueToStage(ProgressStage stage) override
    {
        calls << QStringLiteral("stage ") + stageName(stage);
    }
    void incrementBatchProgressBy(double amount, const QString& status) override
    {
        calls << QStringLiteral("increment %1 %2").arg(amount).arg(status);
    }
    void stopProcessing() override { calls << QStringLiteral("stop processing"); }
    void preflightIsDoneForDocAtPath(const QString& path) override { calls << QStringLiteral("done ") + path; }

    std::optional<QueuedDocument> queued;
    QStringList calls;
};

class ControlCenterTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_temp.isValid() && m_docs.isValid());
        m_folders = PreflightFolders::inside(m_temp.filePath(QStringLiteral("run")));
        m_doc = m_docs.filePath(QStringLiteral("Brochure.idml"));
        test::writeIdml(m_doc, test::minimalIdml());
    }

    // A link analysis that finds no links, as the real one does for this document.
    static LinkAnalysisOutcome findNoLinks(const LinkAnalysisRequest& request)
    {
        const QVariantMap document{{app::kGroupNameKey, QFileInfo(request.documentPath).fileName()},
                                   {app::kGroupIsDockKey, true},
                                   {app::kGroupChildrenKey, QVariantList{}}};
        return {false,
                {{QStringLiteral("612"), QStringLiteral("792"), {QStringLiteral("1")}}},
                QVariantMap{{request.documentPath, document}},
                {}};
    }

    std::unique_ptr<QNControlCenter> makeCenter(InDesignHost& host)
    {
        auto center = std::make_unique<QNControlCenter>(host, m_alerts, m_progress, m_results, m_folders);
        center->setSettingsFile(m_temp.filePath(QStringLiteral("settings.ini")));
        center->setLinkAnalysis(findNoLinks);
        center->startup();
        return center;
    }

    QStringList dataFiles() const
    {
        return QDir(m_folders.dataFolder).entryList({QStringLiteral("qnf_*")}, QDir::Files, QDir::Name);
    }

    QTemporaryDir m_temp;
    QTemporaryDir m_docs;
    PreflightFolders m_folders;
    QString m_doc;
    app::ScriptedAlertSink m_alerts;
    RecordingProgress m_progress;
    RecordingResults m_results;
};

} // namespace

TEST_F(ControlCenterTest, APreflightRunsTheStagesInOrderAndLeavesTheDataFiles)
{
    FakeHost host;
    ASSERT_TRUE(host.openDocument(m_doc, true));
    auto center = makeCenter(host);

    ASSERT_TRUE(center->preflightActiveDoc());
    center->waitUntilPreflightIsDone();

    const PreflightOutcome& outcome = center->outcome();
    EXPECT_EQ(outcome.ended, PreflightEnding::Completed);
    EXPECT_TRUE(m_alerts.requests().empty());
    EXPECT_EQ(m_progress.stages(),
              (QStringList{QStringLiteral("stage links Preflighting links..."),
                           QStringLiteral("stage links Preflighting links..."),
                           QStringLiteral("stage fonts Preflighting fonts..."),
                           QStringLiteral("stage colors Preflighting colors..."),
                           QStringLiteral("stage end Finishing..."), QStringLiteral("stage stop")}));
    const QStringList lines = m_progress.lines();
    EXPECT_EQ(lines.mid(lines.size() - 3),
              (QStringList{QStringLiteral("stage stop"), QStringLiteral("value 0"), QStringLiteral("finished")}));
    EXPECT_EQ(m_results.calls, (QStringList{QStringLiteral("clear"), QStringLiteral("show Brochure.idml"),
                                            QStringLiteral("setItems"), QStringLiteral("summary Brochure.idml")}));
    EXPECT_EQ(m_results.handedOver.keys(), QStringList{m_doc});
    EXPECT_EQ(m_results.presetHandedOver, QStringLiteral("Strict")); // the preset read as it started

    // The inspections got the document record and the unpacked IDML; a failed one is a warning, and
    // so is each part skipped, named once.
    EXPECT_EQ(host.inspections,
              (QStringList{QStringLiteral("fonts Brochure.idml"), QStringLiteral("colors Brochure.idml 1")}));
    // The preflight hands its one parsed export to the inspections.
    EXPECT_NE(host.documentOfInspection, nullptr);
    EXPECT_EQ(warningTexts(outcome.warnings),
              (QStringList{QStringLiteral("Stories/Story_u1a.xml: not readable XML at byte 14"),
                           QStringLiteral("The colors could not be inspected: Graphic.xml: the swatches could not be "
                                          "read")}));

    EXPECT_EQ(outcome.record.fileName, QStringLiteral("Brochure.idml"));
    EXPECT_TRUE(outcome.fonts.has_value() && outcome.fonts->isEmpty());
    EXPECT_FALSE(outcome.colors.has_value()); // its inspection failed
    EXPECT_EQ(center->currDocInfo().horizMeasurementUnits(), QStringLiteral("Points"));
    EXPECT_EQ(center->currDocInfo().pageSizeStr(), QStringLiteral("612 x 792 pt"));
    EXPECT_TRUE(center->currDocInfo().hasPreflightErrors());

    // The data files stay for the lists; the work folder is emptied.
    EXPECT_EQ(dataFiles(), (QStringList{app::kFontDataFileName, app::kLinkDataFileName}));
    EXPECT_TRUE(QDir(m_folders.workFolder).isEmpty());
}

TEST_F(ControlCenterTest, NoDocumentGivesOneCriticalAlertAndNoStages)
{
    RecordingScriptRunner scripts;
    scripts.pushError(QStringLiteral("Can't get active document."));
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    auto center = makeCenter(host);
    // The data files of an earlier preflight go at the start, whatever follows.
    for (const QString& name : {app::kLinkDataFileName, app::kFontDataFileName, app::kColorDataFileName})
        test::writeAll(QDir(m_folders.dataFolder).filePath(name), "old");

    EXPECT_FALSE(center->preflightActiveDoc());
    center->waitUntilPreflightIsDone();

    ASSERT_EQ(m_alerts.requests().size(), 1U);
    const app::AlertRequest alert = m_alerts.requests().front();
    EXPECT_EQ(alert.message, app::withSupportContact(QStringLiteral("Can't get active document.")));
    EXPECT_TRUE(alert.critical);
    EXPECT_TRUE(m_progress.lines().isEmpty()); // the bar never showed
    EXPECT_EQ(m_results.calls, QStringList{QStringLiteral("clear")});
    EXPECT_EQ(center->outcome().ended, PreflightEnding::NoDocument);
    EXPECT_TRUE(dataFiles().isEmpty());
    EXPECT_TRUE(center->dataFilesWereDeleted());

    // A converted or unsaved document has InDesign say "no full name": the message explains.
    scripts.pushError(QStringLiteral("Can't get full name of document 1: it has no full name."));
    EXPECT_FALSE(center->preflightActiveDoc());
    ASSERT_EQ(m_alerts.requests().size(), 2U);
    EXPECT_EQ(
        m_alerts.requests().back().message,
        app::withSupportContact(QStringLiteral("Quillon cannot preflight new unsaved and [Converted] documents. "
                                               "Please save the document with the current version of InDesign.")));
}

TEST_F(ControlCenterTest, AFailedExportCancelsLoadsNothingAndHidesTheBar)
{
    RecordingScriptRunner scripts;
    scripts.setResponder([this](const QString& source) -> std::optional<QVariantMap> {
        if (source.contains(QLatin1String("set res to {}")))
            return scriptSuccessOutcome(QVariantList{QStringLiteral("Mac:Jobs:Brochure.indd"), m_doc,
                                                     QStringLiteral("Brochure.indd"), QStringLiteral("4"),
                                                     QStringLiteral("2"), QStringLiteral("19.0")});
        if (source.contains(QLatin1String("export document")))
            return scriptErrorOutcome(QStringLiteral("InDesign got an error"), QStringLiteral("Disk full."));
        return std::nullopt;
    });
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    auto center = makeCenter(host);
    bool analysed = false;
    center->setLinkAnalysis([&analysed](const LinkAnalysisRequest&) {
        analysed = true;
        return LinkAnalysisOutcome{};
    });

    ASSERT_TRUE(center->preflightActiveDoc());
    center->waitUntilPreflightIsDone();

    EXPECT_TRUE(center->doCancel());
    EXPECT_FALSE(analysed);
    EXPECT_EQ(center->outcome().ended, PreflightEnding::Cancelled);
    ASSERT_TRUE(center->outcome().exportError.has_value());
    EXPECT_EQ(center->outcome().exportError->message, QStringLiteral("Disk full."));
    ASSERT_EQ(m_alerts.requests().size(), 1U);
    EXPECT_EQ(m_alerts.requests().front().title, QStringLiteral("Cannot initiate preflighting"));
    // No stage but the last one shows, which hides the bar; the lists stay empty.
    EXPECT_EQ(m_progress.stages(), QStringList{QStringLiteral("stage stop")});
    EXPECT_EQ(m_results.calls, (QStringList{QStringLiteral("clear"), QStringLiteral("show Brochure.indd")}));
}

TEST_F(ControlCenterTest, CancelBetweenStagesEndsTheRestAndKeepsTheWorkFolder)
{
    FakeHost host;
    ASSERT_TRUE(host.openDocument(m_doc, true));
    auto center = makeCenter(host);
    m_progress.onStage = [&center](const QString& stage) {
        if (stage == QLatin1String("fonts"))
            center->setDoCancel(true);
    };

    ASSERT_TRUE(center->preflightActiveDoc());
    center->waitUntilPreflightIsDone();

    EXPECT_TRUE(host.inspections.isEmpty());
    EXPECT_EQ(m_progress.stages(),
              (QStringList{QStringLiteral("stage links Preflighting links..."),
                           QStringLiteral("stage links Preflighting links..."),
                           QStringLiteral("stage fonts Preflighting fonts..."), QStringLiteral("stage stop")}));
    EXPECT_EQ(m_progress.lines().constLast(), QStringLiteral("finished"));
    EXPECT_FALSE(m_results.calls.contains(QStringLiteral("setItems")));
    EXPECT_EQ(center->outcome().ended, PreflightEnding::Cancelled);
    EXPECT_FALSE(center->outcome().fonts.has_value());
    EXPECT_FALSE(QDir(m_folders.workFolder).isEmpty()); // kept until the next successful run
    EXPECT_EQ(dataFiles(), QStringList{app::kLinkDataFileName});

    // The next preflight starts afresh; a link count of zero still runs every stage.
    m_progress.onStage = nullptr;
    host.linkCount = QStringLiteral("0");
    int linksInDoc = -1;
    center->setLinkAnalysis([&linksInDoc](const LinkAnalysisRequest& request) {
        linksInDoc = request.numberOfLinksInDoc;
        return findNoLinks(request);
    });
    ASSERT_TRUE(center->preflightActiveDoc());
    center->waitUntilPreflightIsDone();
    EXPECT_EQ(center->outcome().ended, PreflightEnding::Completed);
    EXPECT_EQ(linksInDoc, 0);
    EXPECT_EQ(host.inspections.size(), 2);
    EXPECT_TRUE(QDir(m_folders.workFolder).isEmpty());
}

TEST_F(ControlCenterTest, AnExceptionInTheLinkAnalysisIsReportedAndTheRestRuns)
{
    FakeHost host;
    ASSERT_TRUE(host.openDocument(m_doc, true));
    auto center = makeCenter(host);
    center->setLinkAnalysis(
        [](const LinkAnalysisRequest&) -> LinkAnalysisOutcome { throw std::runtime_error("spread 7 is malformed"); });

    ASSERT_TRUE(center->preflightActiveDoc());
    center->waitUntilPreflightIsDone();

    ASSERT_EQ(m_alerts.requests().size(), 1U);
    const app::AlertRequest alert = m_alerts.requests().front();
    EXPECT_EQ(alert.title, QStringLiteral("Error preflighting links"));
    EXPECT_EQ(center->lastAlertButtonReturn(), app::kAlertFirstButton);
    EXPECT_EQ(host.inspections.size(), 2);
    EXPECT_EQ(center->outcome().ended, PreflightEnding::Completed);
    // The outcome keeps what the user was alerted to, as a user reads it.
    ASSERT_EQ(center->outcome().alerts.size(), 1);
    EXPECT_TRUE(center->outcome().alerts.front().message.startsWith(
        QStringLiteral("Error preflighting links: Unexpected error occurred when preflighting links:\n\nspread 7")));
}

TEST_F(ControlCenterTest, ABatchAsksForTheNextDocumentAndReportsToTheBatch)
{
    FakeHost host;
    ASSERT_TRUE(host.openDocument(m_doc, true));
    auto center = makeCenter(host);
    RecordingBatch batch;
    batch.queued = BatchPreflight::QueuedDocument{QStringLiteral("Brochure.idml"), m_doc};

    ASSERT_TRUE(center->preflightActiveDoc(&batch));
    center->waitUntilPreflightIsDone();

    EXPECT_TRUE(center->isBatchPreflight());
    // Stages go to the batch, all but "stop"; the window's bar shows nothing.
    EXPECT_EQ(batch.calls,
              (QStringList{QStringLiteral("increment 0 Gathering document info..."), QStringLiteral("stage links"),
                           QStringLiteral("stage links"), QStringLiteral("stage fonts"), QStringLiteral("stage colors"),
                           QStringLiteral("stage end"), QStringLiteral("done ") + m_doc}));
    EXPECT_TRUE(m_progress.stages().isEmpty());
}

TEST_F(ControlCenterTest, ABatchDocumentThatCannotBeResavedStopsTheBatch)
{
    RecordingScriptRunner scripts;
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    auto center = makeCenter(host);
    RecordingBatch batch;
    batch.queued = BatchPreflight::QueuedDocument{QStringLiteral("Old \"v1\".indd"), QStringLiteral("/Jobs/Old.indd")};

    // Saving in the current version is on when never set: the document is saved, and refused.
    scripts.pushError(QStringLiteral("Can't get full name: no full name."));
    scripts.pushError(QStringLiteral("The file is locked."));
    EXPECT_FALSE(center->preflightActiveDoc(&batch));
    QStringList sources = scripts.sources();
    ASSERT_EQ(sources.size(), 2);
    EXPECT_TRUE(sources.at(1).contains(QStringLiteral("save document \"Old \\\"v1\\\".indd\" to \"/Jobs/Old.indd\"")));
    ASSERT_EQ(m_alerts.requests().size(), 1U);
    EXPECT_EQ(m_alerts.requests().back().title,
              QStringLiteral("Cannot resave active document from the current InDesign version"));
    EXPECT_EQ(batch.calls, QStringList{QStringLiteral("stop processing")});

    // With the option off the converted document is refused with the longer message.
    app::Settings(m_temp.filePath(QStringLiteral("settings.ini")))
        .setValue(QStringLiteral("packSaveInCurrentInDesignVersion"), false);
    scripts.pushError(QStringLiteral("Can't get full name: no full name."));
    EXPECT_FALSE(center->preflightActiveDoc(&batch));
    EXPECT_EQ(scripts.sources().size(), 3);
    EXPECT_EQ(m_alerts.requests().back().title, QStringLiteral("Cannot preflight active document \"Old.indd\""));
    EXPECT_TRUE(m_alerts.requests().back().message.contains(
        QLatin1String("check the option \"Save files in current InDesign version, if needed\"")));
    EXPECT_EQ(batch.calls.size(), 2);
}

TEST_F(ControlCenterTest, ClearingTheWorkFolderSparesHiddenFilesAndSharedFolders)
{
    FakeHost host;
    auto center = makeCenter(host);
    test::writeAll(QDir(m_folders.workFolder).filePath(QStringLiteral(".keep")), "x");
    test::writeAll(QDir(m_folders.workFolder).filePath(QStringLiteral("old.idml")), "x");
    QDir(m_folders.workFolder).mkpath(QStringLiteral("old.idml.folder12345/Spreads"));
    center->clearTmpQuillonFolder();
    EXPECT_EQ(QDir(m_folders.workFolder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral(".keep")});

    // When the work folder is the data folder, only the run's own files may go.
    const QString shared = m_temp.filePath(QStringLiteral("shared"));
    QDir().mkpath(shared);
    test::writeAll(QDir(shared).filePath(QStringLiteral("someone-else.txt")), "x");
    test::writeAll(QDir(shared).filePath(app::kLinkDataFileName), "x");
    QNControlCenter sharing(host, m_alerts, m_progress, m_results, PreflightFolders{shared, shared});
    sharing.clearTmpQuillonFolder();
    EXPECT_EQ(QDir(shared).entryList(QDir::Files, QDir::Name),
              (QStringList{app::kLinkDataFileName, QStringLiteral("someone-else.txt")}));
}

TEST_F(ControlCenterTest, CommandsOnTheLastPreflightedDocument)
{
    RecordingScriptRunner scripts;
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    auto center = makeCenter(host);

    // Before any preflight.
    center->packageWithInDesign();
    ASSERT_EQ(m_alerts.requests().size(), 1U);
    EXPECT_EQ(m_alerts.requests().front().title, QStringLiteral("Please preflight a file first"));
    EXPECT_TRUE(scripts.sources().isEmpty());
    EXPECT_FALSE(center->createTextReport(QString()));

    // With a document: open, then the Package command; a failed open is reported and skipped.
    center->setCurrDocPath(QStringLiteral("/Jobs/Say \"hi\".indd"));
    center->setCurrDocName(QStringLiteral("Say \"hi\".indd"));
    scripts.pushError(QStringLiteral("File not found."));
    scripts.pushError(QStringLiteral("A dialog is open."));
    center->packageWithInDesign();
    ASSERT_EQ(scripts.sources().size(), 2);
    EXPECT_TRUE(scripts.sources().at(0).contains(QStringLiteral("open \"/Jobs/Say \\\"hi\\\".indd\"")));
    EXPECT_TRUE(scripts.sources().at(1).contains(QStringLiteral("Packa&ge")));
    ASSERT_EQ(m_alerts.requests().size(), 3U);
    EXPECT_EQ(m_alerts.requests().at(2).title, QStringLiteral("Cannot invoke the Package command in InDesign"));

    // The report carries the paragraph styles only when "printParas" is on.
    FakeHost offline;
    auto reporting = makeCenter(offline);
    reporting->setCurrDocName(QStringLiteral("Brochure.idml"));
    ASSERT_TRUE(reporting->createTextReport(QStringLiteral("/out")));
    EXPECT_EQ(m_results.calls.constLast(), QStringLiteral("report /out [] "));
    app::Settings(m_temp.filePath(QStringLiteral("settings.ini"))).setValue(QStringLiteral("printParas"), true);
    ASSERT_TRUE(reporting->createTextReport(QStringLiteral("/out")));
    EXPECT_EQ(m_results.calls.constLast(), QStringLiteral("report /out [styles of Brochure.idml] "));
}

TEST_F(ControlCenterTest, ALinkDataFileThatCannotBeWrittenIsAWarning)
{
    FakeHost host;
    ASSERT_TRUE(host.openDocument(m_doc, true));
    auto center = makeCenter(host);
    // A folder where the file should go cannot be replaced by it.
    ASSERT_TRUE(QDir(m_folders.dataFolder).mkpath(app::kLinkDataFileName + QStringLiteral("/x")));

    ASSERT_TRUE(center->preflightActiveDoc());
    center->waitUntilPreflightIsDone();

    EXPECT_EQ(center->outcome().ended, PreflightEnding::Completed);
    const QStringList all = warningTexts(center->outcome().warnings);
    EXPECT_EQ(all.filter(QStringLiteral("The link data could not be written")).size(), 1)
        << all.join(u'\n').toStdString();
    EXPECT_EQ(m_results.handedOver.keys(), QStringList{m_doc}); // the lists still get the records
}
