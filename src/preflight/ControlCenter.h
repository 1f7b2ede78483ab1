#pragma once

#include "app/Operations.h"
#include "app/Progress.h"
#include "app/Result.h"
#include "inspection/DocInfo.h"
#include "host/InDesignHost.h"
#include "preflight/LinkAnalysis.h"
#include "preflight/PreflightFolders.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <future>
#include <memory>
#include <mutex>

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

// Runs one preflight of one document at a time: asks the host for the active document (or the
// next one of a batch), then, on a worker thread of its own, has it exported as IDML and
// unpacked, its links analysed, its document information read, its fonts and colours inspected,
// and finally has the results sink load the data files those steps leave in the data folder.
//
// The nine stages run strictly one after another. Cancelling is a flag: a stage that finds it set
// ends its work, and the later stages still run (the last one then loads nothing and keeps the
// work folder). Alerts go to the alert sink, progress to the progress sink; the stages never
// touch the user interface themselves.
//
// Public methods are called from one thread (the main thread of the desktop application); the
// stages run on the worker. The document strings describe the last document the host answered
// for and are not to be read while a preflight runs.
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
    // place; empty document strings. With `services`, checks that Apple events may be sent to it.
    void startup(const host::AppleEventServices* services = nullptr);

    // Starts a preflight of the active document, or with `batch` of the batch's next document,
    // and returns at once; true when the stages were queued. Nothing is queued when another
    // preflight still runs, when the host names no document (after its alert) or when cancelled
    // before the stages were made.
    bool preflightActiveDoc(BatchPreflight* batch = nullptr);
    // Blocks until the stages of the running preflight have ended (at once when none runs).
    void waitUntilPreflightIsDone();
    bool isPreflighting() const { return m_isPreflighting; }

    // The cancel flag, set from any thread (and by the IDML stage when the export failed).
    bool doCancel() const { return m_doCancel.isCancelled(); }
    void setDoCancel(bool cancel);

    // The stages and the steps of a preflight, in the order they run.
    void clearAllResults();
    void deleteTmpDataFiles();
    // The six-string record of the document to preflight, or empty after an alert.
    QStringList pathsAndNameOfActiveDoc();
    bool checkIfConvertedAndResaveIfNeededDocWithNameRef(const host::DocumentReference& document, const QString& path);
    bool createAndParseIDMLForInDesignFilePath(const QString& path);
    void parseDocInfoInIDML();
    void processFonts();
    void processColors();
    void populatePreflightResults();
    void populateSummaryAndDocInfo();
    // The results of a batch document whose stored data the batch controller has written back
    // into the data files.
    void populatePreflightResultsForSelectedDocFromBatch();
    // Empties the work folder (hidden files stay); failures are logged and skipped.
    void clearTmpQuillonFolder();

    // Progress: a named stage ("doc", "links", "fonts", "colors", "end", "stop") sets the bar's
    // value and status text ("stop" also ends the bar); an increment is given as text ("4") with a
    // status; a bar without an end is a maximum of 0. The bar appears as a maximum of 100 when a
    // preflight's stages are about to be queued.
    void setProgressValueToStage(const QString& stage);
    void incrementProgressBy(const QString& amount, const QString& status);
    void indeterminateProgressWithStatus(const QString& status);

    // The user chose another checkup preset.
    void presetsPopup(const QString& title);

    // Commands on the last preflighted document.
    void packageWithInDesign();
    // Writes the text report into `targetFolder` (the package pipeline, the command line); with
    // an empty folder the results sink asks the user where, and nothing happens before a
    // preflight. Gives the report's path.
    app::Result<QString> createTextReport(const QString& targetFolder);
    // The paragraph-styles report of the document, or "" when the host cannot make it.
    QString createParaStylesReport();

    // The facts of the last preflight.
    const QString& InDesignVersion() const { return m_InDesignVersion; }
    const QString& currInDesignPath() const { return m_currInDesignPath; }
    const QString& currDocPath() const { return m_currDocPath; }
    const QString& currDocName() const { return m_currDocName; }
    const QString& numberOfPagesInDoc() const { return m_numberOfPagesInDoc; }
    const QString& numberOfLinksInDoc() const { return m_numberOfLinksInDoc; }
    const QString& InDesignVersionNumber() const { return m_InDesignVersionNumber; }
    const QString& idmlFolderPath() const { return m_idmlFolderPath; }
    const inspection::QNDocInfo& currDocInfo() const { return m_currDocInfo; }
    bool isBatchPreflight() const { return m_isBatchPreflight; }
    bool dataFilesWereDeleted() const { return m_dataFilesWereDeleted; }
    const PreflightFolders& folders() const { return m_folders; }

    // The batch document-information box switches between the stored results of a batch.
    void setCurrDocInfo(const inspection::QNDocInfo& info) { m_currDocInfo = info; }
    void setCurrDocPath(const QString& path) { m_currDocPath = path; }
    void setCurrDocName(const QString& name) { m_currDocName = name; }
    void setIsBatchPreflight(bool batch) { m_isBatchPreflight = batch; }

    int lastAlertButtonReturn() const { return m_lastAlertButtonReturn; }
    void setLastAlertButtonReturn(int answer) { m_lastAlertButtonReturn = answer; }

    // How the last preflight ended, for callers that report in words (the command line).
    enum class Outcome {
        NotStarted, // no preflight yet, or one is running
        NoDocument, // the host named no document
        Cancelled,  // the flag was set (by the user, or because the export failed)
        Completed,  // the results were loaded
    };
    Outcome lastOutcome() const { return m_lastOutcome; }
    // Why the export or unpacking failed (empty otherwise): the message names the document.
    const app::Error& lastExportError() const { return m_lastExportError; }
    // What failed without stopping the preflight (a part that could not be read, an inspection, a
    // data file, a repaired archive, a document without pages), each once, in the order met. A
    // preflight with warnings is not a clean one.
    QList<app::Error> warnings() const;

private:
    app::Settings settings() const;
    void addWarning(const QString& warning);
    void addWarnings(const QList<app::Error>& warnings);
    // Waits for the link data file written in the background; its failure is a warning.
    void finishLinkDataFile();
    void showStage(const QString& stage);
    std::shared_ptr<app::Operation> stage(const QString& name, void (QNControlCenter::*step)());

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
    bool m_isBatchPreflight = false;
    bool m_dataFilesWereDeleted = false;
    std::atomic<int> m_lastAlertButtonReturn{0};
    QStringList m_activeDocRecord;
    QString m_currDocPath;
    QString m_currDocName;
    QString m_numberOfPagesInDoc;
    QString m_InDesignVersionNumber;
    QString m_numberOfLinksInDoc;
    QString m_idmlFolderPath;
    inspection::QNDocInfo m_currDocInfo;
    QString m_registrationInTextFlag;
    // The link analysis' records, written to their data file while the fonts and colours are
    // inspected, and handed to the results sink.
    QVariantMap m_linkData;
    std::future<app::Status> m_linkDataWritten;

    std::unique_ptr<app::OperationQueue> m_queue;
    std::atomic<bool> m_isPreflighting{false};
    Outcome m_lastOutcome = Outcome::NotStarted;
    app::Error m_lastExportError;
    mutable std::mutex m_warningsMutex;
    QList<app::Error> m_warnings;
};

} // namespace quillon::preflight
