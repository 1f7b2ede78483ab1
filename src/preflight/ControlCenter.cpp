#include "preflight/ControlCenter.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "host/AppleEventPermission.h"
#include "preflight/BatchPreflight.h"
#include "preflight/DocumentWarnings.h"
#include "preflight/IdmlCreator.h"
#include "preflight/PreflightResultsSink.h"
#include "preflight/StoredData.h"
#include "idml/IdmlDocument.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <exception>
#include <typeinfo>

using namespace quillon::host;

namespace quillon::preflight {

namespace {

const QString kCannotPreflightTitle = QStringLiteral("Cannot preflight active document");
const QString kConvertedDocumentMessage =
    QStringLiteral("Quillon cannot preflight new unsaved and [Converted] documents. Please save the document with "
                   "the current version of InDesign.");
const QString kNoFullName = QStringLiteral("no full name");
const QString kGatheringStatus = QStringLiteral("Gathering document info...");

// The bar value and the status text of each progress stage; a null text leaves the status as is.
struct StageLook {
    const char* name;
    double value;
    const char* text;
};
constexpr StageLook kStages[] = {
    {"doc", 0, nullptr},
    {"links", 4, "Preflighting links..."},
    {"fonts", 60, "Preflighting fonts..."},
    {"colors", 80, "Preflighting colors..."},
    {"end", 100, "Finishing..."},
    {"stop", 0, ""},
};

bool removePath(const QFileInfo& item)
{
    if (item.isDir() && !item.isSymLink())
        return QDir(item.absoluteFilePath()).removeRecursively();
    return QFile::remove(item.absoluteFilePath());
}

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

void QNControlCenter::setDoCancel(bool cancel)
{
    if (cancel)
        m_doCancel.cancel();
    else
        m_doCancel.reset();
}

QList<app::Error> QNControlCenter::warnings() const
{
    std::lock_guard lock(m_warningsMutex);
    return m_warnings;
}

void QNControlCenter::addWarning(const QString& warning)
{
    addWarnings({app::makeError(warning)});
}

void QNControlCenter::addWarnings(const QList<app::Error>& warnings)
{
    std::lock_guard lock(m_warningsMutex);
    addWarningsOnce(m_warnings, warnings);
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
    m_currDocPath.clear();
    m_currDocName.clear();
    m_numberOfPagesInDoc.clear();
    m_InDesignVersionNumber.clear();
    m_numberOfLinksInDoc.clear();
    m_idmlFolderPath = QStringLiteral("");
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
    m_isBatchPreflight = batch != nullptr;
    m_lastOutcome = Outcome::NotStarted;
    m_lastExportError = app::Error();
    {
        std::lock_guard lock(m_warningsMutex);
        m_warnings.clear();
    }
    m_idmlFolderPath.clear();

    clearAllResults();
    deleteTmpDataFiles();
    const QStringList record = pathsAndNameOfActiveDoc();
    if (record.isEmpty()) {
        m_currDocPath.clear();
        m_currDocName.clear();
        m_numberOfPagesInDoc.clear();
        m_InDesignVersionNumber.clear();
        m_numberOfLinksInDoc.clear();
        m_lastOutcome = Outcome::NoDocument;
        return false;
    }
    m_activeDocRecord = record;
    addWarnings(m_host.documentWarnings());
    if (const std::optional<app::Error> noPages = noPagesWarning(record))
        addWarnings({*noPages});
    m_currDocInfo = inspection::QNDocInfo::docInfoWithRecord(record);
    m_registrationInTextFlag = m_results.registrationInTextFlag();
    m_progress.setMaximum(100); // the bar appears
    m_results.showDocument(m_currDocName, m_currDocPath);
    if (m_isBatchPreflight)
        m_batch->incrementBatchProgressBy(0.0, kGatheringStatus);
    else
        incrementProgressBy(QStringLiteral("4"), kGatheringStatus);

    m_queue = std::make_unique<app::OperationQueue>();
    const QString docPath = record.value(inspection::kRecordPosixPath);
    auto exportAndLinks = std::make_shared<app::Operation>(QStringLiteral("createAndParseIDML"), [this, docPath] {
        if (!doCancel())
            createAndParseIDMLForInDesignFilePath(docPath);
    });
    if (doCancel()) {
        app::logLine(QStringLiteral("doCancel"));
        setProgressValueToStage(QStringLiteral("stop"));
        m_lastOutcome = Outcome::Cancelled;
        return false;
    }
    auto progressStage = [this](const QString& name) {
        return std::make_shared<app::Operation>(QStringLiteral("stage ") + name, [this, name] {
            if (!doCancel())
                setProgressValueToStage(name);
        });
    };
    const std::vector<std::shared_ptr<app::Operation>> operations{
        exportAndLinks,
        stage(QStringLiteral("parseDocInfoInIDML"), &QNControlCenter::parseDocInfoInIDML),
        progressStage(QStringLiteral("links")),
        progressStage(QStringLiteral("fonts")),
        stage(QStringLiteral("processFonts"), &QNControlCenter::processFonts),
        progressStage(QStringLiteral("colors")),
        stage(QStringLiteral("processColors"), &QNControlCenter::processColors),
        progressStage(QStringLiteral("end")),
        std::make_shared<app::Operation>(QStringLiteral("populatePreflightResults"),
                                         [this] {
                                             populatePreflightResults();
                                             m_isPreflighting = false;
                                         }),
    };
    std::vector<app::Operation*> order;
    for (const auto& operation : operations)
        order.push_back(operation.get());
    app::setOrderOfOperations(order);
    m_isPreflighting = true;
    m_queue->addOperations(operations);
    return true;
}

std::shared_ptr<app::Operation> QNControlCenter::stage(const QString& name, void (QNControlCenter::*step)())
{
    return std::make_shared<app::Operation>(name, [this, step] { (this->*step)(); });
}

void QNControlCenter::waitUntilPreflightIsDone()
{
    if (m_queue)
        m_queue->waitUntilAllOperationsAreFinished();
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

QStringList QNControlCenter::pathsAndNameOfActiveDoc()
{
    app::logEntry("pathsAndNameOfActiveDoc");
    DocumentReference document = DocumentReference::active();
    if (m_isBatchPreflight) {
        const std::optional<BatchPreflight::QueuedDocument> next = m_batch->nextDocument();
        if (!next) {
            app::logFailure(QStringLiteral("get the next document of the batch"));
            return {};
        }
        document = DocumentReference::named(next->name);
        if (!checkIfConvertedAndResaveIfNeededDocWithNameRef(document, next->path))
            return {};
    }

    const app::Result<QStringList> record = m_host.pathsAndNameOfDocument(document);
    if (!record) {
        const QString brief = record.error().message;
        app::logLine(QStringLiteral("briefErr: %1").arg(brief));
        const QString message = brief.contains(kNoFullName) ? kConvertedDocumentMessage : brief;
        app::runAlert(m_alerts, kCannotPreflightTitle, app::withSupportContact(message), std::nullopt, true);
        return {};
    }
    if (record->isEmpty()) {
        app::runAlert(m_alerts, kCannotPreflightTitle, QString(), std::nullopt, true);
        return {};
    }
    m_currDocPath = record->value(inspection::kRecordPosixPath);
    m_currDocName = record->value(inspection::kRecordFileName);
    m_numberOfPagesInDoc = record->value(inspection::kRecordPageCount);
    m_numberOfLinksInDoc = record->value(inspection::kRecordLinkCount);
    m_InDesignVersionNumber = record->value(inspection::kRecordInDesignVersion);
    app::logLine(QStringLiteral("hfsPathPOSIXPathName: %1").arg(record->join(QStringLiteral(", "))));
    return *record;
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
            brief.contains(kNoFullName)
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

bool QNControlCenter::createAndParseIDMLForInDesignFilePath(const QString& path)
{
    app::logEntry("createAndParseIDML");
    app::logLine(QStringLiteral("----> start idml creator"));
    QNIDMLCreator creator(m_host, m_alerts, this);
    creator.setWorkFolder(m_folders.workFolder);
    creator.setCancelFlag(&m_doCancel);
    m_idmlFolderPath = creator.processInDesignFileAtPath(path);
    app::logLine(QStringLiteral("idmlFolderPath: %1").arg(m_idmlFolderPath));
    app::logLine(QStringLiteral("----> end idml creator"));
    if (m_idmlFolderPath.isEmpty()) {
        m_lastExportError = creator.lastError();
        setDoCancel(true);
        return false;
    }
    if (creator.lastUnpackWasRepaired())
        addWarnings({repairedArchiveWarning()});

    setProgressValueToStage(QStringLiteral("links"));
    QString failure;
    try {
        LinkAnalysisOutcome outcome =
            m_linkAnalysis({m_idmlFolderPath, path, m_numberOfLinksInDoc.toInt(), m_linkFolders, m_isBatchPreflight,
                            &m_progress, &m_doCancel, &m_alerts});
        m_currDocInfo.setDocPageSizes(outcome.pageSizes);
        m_linkData = std::move(outcome.linkData);
        addWarnings(outcome.warnings);
        if (!m_linkData.isEmpty()) {
            app::logLine(QStringLiteral("write qnf_tmpLinkData.plist"));
            const QString file = QDir(m_folders.dataFolder).filePath(app::kLinkDataFileName);
            // Only read while the file is written: the stages that run meanwhile do not touch it.
            m_linkDataWritten =
                std::async(std::launch::async, [this, file] { return app::writePropertyListFile(m_linkData, file); });
        }
        if (!outcome.foundLinks)
            app::logLine(QStringLiteral("no links"));
        return outcome.foundLinks;
    } catch (const std::exception& exception) {
        failure = QString::fromLocal8Bit(exception.what());
        app::logException(QStringLiteral("exception type: %1").arg(QString::fromLatin1(typeid(exception).name())));
    } catch (...) {
        failure = QStringLiteral("an exception of unknown type");
    }
    app::logException(QStringLiteral("exception 398: %1").arg(failure));
    app::runAlertOnMainThread(
        m_alerts, this, QStringLiteral("Error preflighting links"),
        app::withSupportContact(QStringLiteral("Unexpected error occurred when preflighting links:\n\n%1\n\nPlease "
                                               "report this error and we'll address it promptly: ")
                                    .arg(failure)),
        std::nullopt, true);
    return false;
}

void QNControlCenter::parseDocInfoInIDML()
{
    if (doCancel() || m_idmlFolderPath.isEmpty())
        return;
    const auto document = idml::IdmlDocument::fromFolder(m_idmlFolderPath);
    if (!document)
        addWarnings({document.error()});
    else if (const app::Status read = m_currDocInfo.parseDocInfoInDocument(**document); !read)
        addWarnings({read.error()});
}

void QNControlCenter::processFonts()
{
    if (doCancel())
        return;
    const auto inspected = m_host.processFonts(m_activeDocRecord, nullptr, &m_doCancel);
    if (!inspected) {
        app::logFailure(QStringLiteral("processFonts: %1").arg(inspected.error().text()));
        addWarning(QStringLiteral("The fonts could not be inspected: %1").arg(inspected.error().text()));
        return;
    }
    addWarnings(inspected->skipped);
    if (const app::Status written = writeFontDataFile(m_folders.dataFolder, m_currDocPath, inspected->found); !written)
        addWarning(QStringLiteral("The fonts could not be inspected: %1").arg(written.error().text()));
}

void QNControlCenter::processColors()
{
    if (doCancel())
        return;
    const auto inspected = m_host.processColors(m_activeDocRecord, nullptr, m_registrationInTextFlag, &m_doCancel);
    if (!inspected) {
        app::logFailure(QStringLiteral("processColors: %1").arg(inspected.error().text()));
        addWarning(QStringLiteral("The colors could not be inspected: %1").arg(inspected.error().text()));
        return;
    }
    addWarnings(inspected->skipped);
    if (const app::Status written = writeColorDataFile(m_folders.dataFolder, m_currDocPath, inspected->found);
        !written)
        addWarning(QStringLiteral("The colors could not be inspected: %1").arg(written.error().text()));
}

void QNControlCenter::finishLinkDataFile()
{
    if (!m_linkDataWritten.valid())
        return;
    const app::Status written = m_linkDataWritten.get();
    if (!written) {
        app::logFailure(QStringLiteral("write the link data: %1").arg(written.error().text()));
        addWarning(QStringLiteral("The link data could not be written: %1").arg(written.error().text()));
    }
}

void QNControlCenter::populatePreflightResults()
{
    app::logEntry("populatePreflightResults");
    finishLinkDataFile();
    QVariantMap linkData = std::exchange(m_linkData, {});
    if (doCancel()) {
        setProgressValueToStage(QStringLiteral("stop"));
        m_lastOutcome = Outcome::Cancelled;
        return;
    }
    m_results.setItems(m_folders.dataFolder, std::move(linkData));
    setProgressValueToStage(QStringLiteral("stop"));
    populateSummaryAndDocInfo();
    clearTmpQuillonFolder();
    m_lastOutcome = Outcome::Completed;
    if (m_isBatchPreflight)
        m_batch->preflightIsDoneForDocAtPath(m_currDocPath);
}

void QNControlCenter::populateSummaryAndDocInfo()
{
    m_results.populateSummaryAndDocInfo(m_currDocInfo);
}

void QNControlCenter::populatePreflightResultsForSelectedDocFromBatch()
{
    m_results.setItems(m_folders.dataFolder);
    populateSummaryAndDocInfo();
}

void QNControlCenter::clearTmpQuillonFolder()
{
    app::logEntry("clearTmpQuillonFolder");
    const QDir work(m_folders.workFolder);
    QFileInfoList items;
    if (QDir::cleanPath(m_folders.workFolder) != QDir::cleanPath(m_folders.dataFolder)) {
        items = work.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    } else {
        // No folder of its own could be made: only this run's files go, never the data files or
        // anything else that shares the folder.
        for (const QString& path :
             {m_idmlFolderPath, QNIDMLCreator::idmlPathForDocument(m_currDocPath, m_folders.workFolder)})
            if (!path.isEmpty() && QFileInfo::exists(path))
                items << QFileInfo(path);
    }
    if (items.isEmpty())
        app::logFailure(QStringLiteral("get tmp dir contents: %1").arg(m_folders.workFolder));
    for (const QFileInfo& item : items)
        if (!removePath(item))
            app::logFailure(QStringLiteral("delete tmp file: %1").arg(item.absoluteFilePath()));
}

void QNControlCenter::setProgressValueToStage(const QString& stage)
{
    if (m_isBatchPreflight) {
        if (!stage.contains(QLatin1String("stop")))
            m_batch->setBatchPreflightProgressValueToStage(stage);
        return;
    }
    for (const StageLook& look : kStages) {
        if (stage != QLatin1String(look.name))
            continue;
        m_progress.stage(stage, look.text ? QString::fromUtf8(look.text) : QString());
        m_progress.setValue(look.value);
        if (stage == QLatin1String("stop"))
            m_progress.finished();
        return;
    }
    app::logError(QStringLiteral("unknown progress stage: %1").arg(stage));
}

void QNControlCenter::incrementProgressBy(const QString& amount, const QString& status)
{
    m_progress.status(status);
    m_progress.increment(amount.toDouble());
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
    if (m_currDocPath.isEmpty()) {
        app::runAlert(m_alerts, QStringLiteral("Please preflight a file first"), QString(), std::nullopt, false);
        return;
    }
    if (const app::Status opened = m_host.activateAndOpenDocument(m_currDocPath); !opened)
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
    if (targetFolder.isEmpty() && m_currDocName.isEmpty()) {
        app::logLine(QStringLiteral("no preflighted document: beep"));
        return app::makeError(QStringLiteral("Please preflight a file first"));
    }
    const QString paraStylesReport =
        settings().boolForKey(QStringLiteral("printParas"), false) ? createParaStylesReport() : QString();
    app::logLine(QStringLiteral("paraReport: %1").arg(paraStylesReport));
    return m_results.createTextReport(targetFolder, paraStylesReport, m_currDocInfo);
}

QString QNControlCenter::createParaStylesReport()
{
    app::logEntry("createParaStylesReport");
    const auto report = m_host.paraReport(m_currDocName);
    if (!report) {
        app::logFailure(QStringLiteral("make the paragraph-styles report: %1").arg(report.error().text()));
        return {};
    }
    addWarnings(report->skipped);
    return report->found;
}

} // namespace quillon::preflight
