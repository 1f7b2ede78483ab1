#pragma once

#include "app/Progress.h"
#include "app/Result.h"
#include "host/InDesignHost.h"
#include "preflight/LinkAnalysis.h"
#include "preflight/Preflight.h"
#include "preflight/PreflightFolders.h"
#include "preflight/ProgressStage.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <future>
#include <memory>

namespace quillon::app {
class AlertSink;
class Settings;
} // namespace quillon::app

namespace quillon::host {
struct AppleEventServices;
} // namespace quillon::host

namespace quillon::preflight {

class BatchPreflight;
class PreflightResultsSink;

// The desktop's driver of preflights, one document at a time: asks the host for the active
// document (or the next one of a batch), then runs the preflight's stages on a worker thread of
// its own and keeps their outcome. The results sink gets the outcome at the end; alerts and
// progress go to their sinks, never to the user interface directly.
//
// Public methods are called from one thread (the main thread of the desktop application). The
// document facts describe the last document the host answered for and are not to be read while
// a preflight runs.
class QNControlCenter : public QObject {
    Q_OBJECT
    // Where main-thread alerts of the stages leave their answer.
    Q_PROPERTY(int lastAlertButtonReturn READ lastAlertButtonReturn WRITE setLastAlertButtonReturn)

public:
    QNControlCenter(host::InDesignHost& host, app::AlertSink& alerts, app::ProgressSink& progress,
                    PreflightResultsSink& results, PreflightFolders folders = PreflightFolders::systemFolders());
    // Waits for a running preflight to end.
    ~QNControlCenter() override;

    // The user defaults read here ("packSaveInCurrentInDesignVersion", "printParas"); empty: the
    // user's own.
    void setSettingsFile(const QString& iniFilePath) { m_settingsFile = iniFilePath; }
    // Folders searched by file name for links missing at their recorded path.
    void setLinkFolders(const QStringList& folders) { m_linkFolders = folders; }
    void setLinkAnalysis(LinkAnalysis analysis) { m_linkAnalysis = std::move(analysis); }

    // At launch: the InDesign to talk to is the host's; its path when installed in the usual
    // place; empty document facts. With `services`, checks that Apple events may be sent to it.
    void startup(const host::AppleEventServices* services = nullptr);

    // Starts a preflight of the active document, or with `batch` of the batch's next document,
    // and returns at once; true when the stages were started. Nothing starts when another
    // preflight still runs, when the host names no document (after its alert) or when cancelled
    // before the stages.
    bool preflightActiveDoc(BatchPreflight* batch = nullptr);
    // Blocks until the stages of the running preflight have ended (at once when none runs).
    void waitUntilPreflightIsDone();
    bool isPreflighting() const { return m_isPreflighting; }

    // The cancel flag, set from any thread (and by the export stage when the export failed).
    bool doCancel() const { return m_doCancel.isCancelled(); }
    void setDoCancel(bool cancel);

    void clearAllResults();
    void deleteTmpDataFiles();
    // The record of the document to preflight, or the error after its alert.
    app::Result<inspection::DocumentRecord> pathsAndNameOfActiveDoc();
    bool checkIfConvertedAndResaveIfNeededDocWithNameRef(const host::DocumentReference& document, const QString& path);
    void populateSummaryAndDocInfo();
    // The results of a batch document whose stored data the batch controller has written back
    // into the data files.
    void populatePreflightResultsForSelectedDocFromBatch();
    // Empties the work folder (hidden files stay); failures are logged and skipped.
    void clearTmpQuillonFolder();

    // Progress outside the stages: a stage's bar value and status text, an increment with a
    // status, a bar without an end.
    void setProgressValueToStage(ProgressStage stage);
    void incrementProgressBy(double amount, const QString& status);
    void indeterminateProgressWithStatus(const QString& status);

    // The user chose another checkup preset.
    void presetsPopup(const QString& title);

    // Commands on the last preflighted document.
    void packageWithInDesign();
    // Writes the text report into `targetFolder` (the package pipeline); with an empty folder
    // the results sink asks the user where, and nothing happens before a preflight. Gives the
    // report's path.
    app::Result<QString> createTextReport(const QString& targetFolder);
    // The paragraph-styles report of the document, or "" when the host cannot make it.
    QString createParaStylesReport();

    // The facts of the last preflight.
    const QString& InDesignVersion() const { return m_InDesignVersion; }
    const QString& currInDesignPath() const { return m_currInDesignPath; }
    const QString& currDocPath() const { return m_record.posixPath; }
    const QString& currDocName() const { return m_record.fileName; }
    const QString& numberOfPagesInDoc() const { return m_record.pageCount; }
    const QString& numberOfLinksInDoc() const { return m_record.linkCount; }
    const QString& InDesignVersionNumber() const { return m_record.InDesignVersion; }
    const inspection::QNDocInfo& currDocInfo() const { return m_outcome.docInfo; }
    bool isBatchPreflight() const { return m_batch != nullptr; }
    bool dataFilesWereDeleted() const { return m_dataFilesWereDeleted; }
    const PreflightFolders& folders() const { return m_folders; }
    // What the last preflight found and how it ended.
    const PreflightOutcome& outcome() const { return m_outcome; }

    // The batch document-information box switches between the stored results of a batch.
    void setCurrDocInfo(const inspection::QNDocInfo& info) { m_outcome.docInfo = info; }
    void setCurrDocPath(const QString& path) { m_record.posixPath = path; }
    void setCurrDocName(const QString& name) { m_record.fileName = name; }

    int lastAlertButtonReturn() const { return m_lastAlertButtonReturn; }
    void setLastAlertButtonReturn(int answer) { m_lastAlertButtonReturn = answer; }

private:
    app::Settings settings() const;
    PreflightSinks sinks();

    host::InDesignHost& m_host;
    app::AlertSink& m_alerts;
    app::ProgressSink& m_progress;
    PreflightResultsSink& m_results;
    PreflightFolders m_folders;
    QString m_settingsFile;
    QStringList m_linkFolders;
    LinkAnalysis m_linkAnalysis;
    BatchPreflight* m_batch = nullptr;

    QString m_InDesignVersion;
    QString m_currInDesignPath;
    app::CancelFlag m_doCancel;
    bool m_dataFilesWereDeleted = false;
    std::atomic<int> m_lastAlertButtonReturn{0};
    inspection::DocumentRecord m_record;
    PreflightOutcome m_outcome;
    PreflightRun m_running;
    std::future<void> m_worker;
    std::atomic<bool> m_isPreflighting{false};
};

} // namespace quillon::preflight
