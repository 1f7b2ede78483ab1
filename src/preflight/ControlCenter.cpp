#include "preflight/ControlCenter.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "host/AppleEventPermission.h"
#include "preflight/BatchPreflight.h"
#include "preflight/DocumentWarnings.h"
#include "preflight/IdmlCreator.h"
#include "preflight/PreflightReporting.h"
#include "preflight/PreflightResultsSink.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <system_error>

using namespace quillon::host;

namespace quillon::preflight {

namespace {

const QString kConvertedDocumentMessage =
    QStringLiteral("Quillon cannot preflight new unsaved and [Converted] documents. Please save the document with "
                   "the current version of InDesign.");

} // namespace

QNControlCenter::QNControlCenter(host::InDesignHost& host, app::AlertSink& alerts, app::ProgressSink& progress,
                                 PreflightResultsSink& results, PreflightFolders folders)
    : m_host(host), m_alerts(alerts), m_progress(progress), m_results(results), m_folders(std::move(folders)),
      m_linkAnalysis(analyseLinksInIdml)
{
}

QNControlCenter::~QNControlCenter()
{
    waitUntilPreflightIsDone();
}

app::Settings QNControlCenter::settings() const
{
    return m_settingsFile.isEmpty() ? app::Settings() : app::Settings(m_settingsFile);
}

PreflightSinks QNControlCenter::sinks()
{
    return {m_alerts, m_progress, &m_results, m_batch, this};
}

void QNControlCenter::setDoCancel(bool cancel)
{
    if (cancel)
        m_doCancel.cancel();
    else
        m_doCancel.reset();
}

void QNControlCenter::startup(const host::AppleEventServices* services)
{
    m_InDesignVersion = m_host.applicationName();
    app::logLine(QStringLiteral("InDesignVersion: %1").arg(m_InDesignVersion));
    const QString defaultPath = QStringLiteral("/Applications/%1/%1.app").arg(m_InDesignVersion);
    app::logLine(QStringLiteral("dfltPath: %1").arg(defaultPath));
    if (QFileInfo::exists(defaultPath)) {
        m_currInDesignPath = defaultPath;
    } else {
        app::logLine(QStringLiteral("InDesign not found here: %1").arg(defaultPath));
        m_currInDesignPath = m_InDesignVersion;
    }
    m_record = {};
    if (services)
        checkAuthorizationToSendAEToApp(m_InDesignVersion, QStringLiteral("Quillon"), *services);
}

bool QNControlCenter::preflightActiveDoc(BatchPreflight* batch)
{
    app::logLine(QStringLiteral("*-> preflightActiveDoc"));
    if (m_isPreflighting) {
        app::logFailure(QStringLiteral("preflight: a preflight is running"));
        return false;
    }
    waitUntilPreflightIsDone(); // the last stage has ended; let its thread go
    m_doCancel.reset();
    m_batch = batch;
    m_outcome = PreflightOutcome();

    clearAllResults();
    deleteTmpDataFiles();
    app::Result<inspection::DocumentRecord> record = pathsAndNameOfActiveDoc();
    if (!record) {
        m_record = {};
        return false;
    }
    const PreflightRequest request{
        m_host,     DocumentReference::active(), m_folders, m_results.judgingInputs(), m_linkFolders, m_linkAnalysis,
        &m_doCancel};
    m_running = startPreflight(request, *record, sinks());
    if (doCancel()) {
        app::logLine(QStringLiteral("doCancel"));
        showProgressStage(ProgressStage::Stop, sinks());
        m_outcome.ended = PreflightEnding::Cancelled;
        m_running.reset();
        return false;
    }
    m_isPreflighting = true;
    auto run = [this] {
        m_outcome = runPreflightStages(*m_running);
        m_isPreflighting = false;
    };
    try {
        m_worker = std::async(std::launch::async, run);
    } catch (const std::system_error& error) {
        // No thread to be had: the stages run here, and the caller waits for them.
        app::logFailure(QStringLiteral("start the preflight's thread: %1").arg(QString::fromLocal8Bit(error.what())));
        run();
    }
    return true;
}

void QNControlCenter::waitUntilPreflightIsDone()
{
    if (m_worker.valid())
        m_worker.get();
    m_running.reset();
}

void QNControlCenter::clearAllResults()
{
    m_results.clearAllResults();
}

void QNControlCenter::deleteTmpDataFiles()
{
    const QDir folder(m_folders.dataFolder);
    for (const QString& name : {app::kLinkDataFileName, app::kFontDataFileName, app::kColorDataFileName})
        QFile::remove(folder.filePath(name));
    m_dataFilesWereDeleted = true;
}

app::Result<inspection::DocumentRecord> QNControlCenter::pathsAndNameOfActiveDoc()
{
    app::logEntry("pathsAndNameOfActiveDoc");
    DocumentReference document = DocumentReference::active();
    if (m_batch) {
        const std::optional<BatchPreflight::QueuedDocument> next = m_batch->nextDocument();
        if (!next) {
            app::logFailure(QStringLiteral("get the next document of the batch"));
            return app::makeError(QStringLiteral("The batch has no document left to preflight."));
        }
        document = DocumentReference::named(next->name);
        if (!checkIfConvertedAndResaveIfNeededDocWithNameRef(document, next->path))
            return app::makeError(QStringLiteral("The document cannot be preflighted."), next->path);
    }
    app::Result<inspection::DocumentRecord> record = askDocumentRecord(m_host, document, m_alerts);
    if (record)
        m_record = *record;
    return record;
}

bool QNControlCenter::checkIfConvertedAndResaveIfNeededDocWithNameRef(const DocumentReference& document,
                                                                      const QString& path)
{
    app::logEntry("checkIfConvertedAndResaveIfNeededDocWithNameRef");
    const app::Result<QString> fullName = m_host.fullNameOfDocument(document);
    if (fullName)
        return true;
    const QString brief = fullName.error().message;
    const QStringList stop{QStringLiteral("Stop")};
    if (settings().boolForKey(QStringLiteral("packSaveInCurrentInDesignVersion"), true)) {
        const app::Status saved = m_host.saveDocument(document, path);
        if (saved)
            return true;
        app::runAlert(m_alerts, QStringLiteral("Cannot resave active document from the current InDesign version"),
                      app::withSupportContact(saved.error().message), stop, true);
    } else {
        const QString message =
            brief.contains(QLatin1String("no full name"))
                ? kConvertedDocumentMessage +
                      QStringLiteral("\n\nYou can also check the option \"Save files in current InDesign version, if "
                                     "needed\" to do this automatically.")
                : brief;
        app::runAlert(m_alerts,
                      QStringLiteral("Cannot preflight active document \"%1\"").arg(QFileInfo(path).fileName()),
                      app::withSupportContact(message), stop, true);
    }
    if (m_batch)
        m_batch->stopProcessing();
    return false;
}

void QNControlCenter::populateSummaryAndDocInfo()
{
    m_results.populateSummaryAndDocInfo(m_outcome.docInfo);
}

void QNControlCenter::populatePreflightResultsForSelectedDocFromBatch()
{
    m_results.setItemsFromDataFiles(m_folders.dataFolder);
    populateSummaryAndDocInfo();
}

void QNControlCenter::clearTmpQuillonFolder()
{
    preflight::clearTmpQuillonFolder(m_folders,
                                     {QNIDMLCreator::idmlPathForDocument(m_record.posixPath, m_folders.workFolder)});
}

void QNControlCenter::setProgressValueToStage(ProgressStage stage)
{
    showProgressStage(stage, sinks());
}

void QNControlCenter::incrementProgressBy(double amount, const QString& status)
{
    incrementProgress(amount, status, sinks());
}

void QNControlCenter::indeterminateProgressWithStatus(const QString& status)
{
    m_progress.setMaximum(0);
    m_progress.status(status);
}

void QNControlCenter::presetsPopup(const QString& title)
{
    m_results.presetsPopup(title);
}

void QNControlCenter::packageWithInDesign()
{
    app::logUserAction("packageWithInDesign");
    if (m_record.posixPath.isEmpty()) {
        app::runAlert(m_alerts, QStringLiteral("Please preflight a file first"), QString(), std::nullopt, false);
        return;
    }
    if (const app::Status opened = m_host.activateAndOpenDocument(m_record.posixPath); !opened)
        app::runAlertOnMainThread(m_alerts, this, QStringLiteral("Cannot open document"),
                                  app::withSupportContact(opened.error().message), std::nullopt, true);
    if (const app::Status packaged = m_host.invokePackageCommand(); !packaged) {
        app::logFailure(QStringLiteral("package with InDesign: %1").arg(packaged.error().message));
        app::runAlertOnMainThread(m_alerts, this, QStringLiteral("Cannot invoke the Package command in InDesign"),
                                  app::withSupportContact(packaged.error().message), std::nullopt, true);
    }
}

app::Result<QString> QNControlCenter::createTextReport(const QString& targetFolder)
{
    app::logUserAction("createTextReport");
    if (targetFolder.isEmpty() && m_record.fileName.isEmpty()) {
        app::logLine(QStringLiteral("no preflighted document: beep"));
        return app::makeError(QStringLiteral("Please preflight a file first"));
    }
    const QString paraStylesReport =
        settings().boolForKey(QStringLiteral("printParas"), false) ? createParaStylesReport() : QString();
    app::logLine(QStringLiteral("paraReport: %1").arg(paraStylesReport));
    return m_results.createTextReport(targetFolder, paraStylesReport, m_outcome.docInfo);
}

QString QNControlCenter::createParaStylesReport()
{
    app::logEntry("createParaStylesReport");
    const auto report = m_host.paraReport(m_record.fileName);
    if (!report) {
        app::logFailure(QStringLiteral("make the paragraph-styles report: %1").arg(report.error().text()));
        return {};
    }
    addWarningsOnce(m_outcome.warnings, report->skipped);
    return report->found;
}

} // namespace quillon::preflight
