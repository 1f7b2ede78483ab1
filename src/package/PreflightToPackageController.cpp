#include "package/PreflightToPackageController.h"

#include "package/DocumentPreflight.h"
#include "package/LinkLists.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/Numbers.h"
#include "app/ParallelFor.h"
#include "host/InDesignHost.h"
#include "preflight/DocumentWarnings.h"
#include "reports/PreflightResults.h"

#include <QDir>
#include <QFileInfo>

#include <optional>
#include <vector>

namespace quillon::package {

namespace {

struct BatchStage {
    std::optional<double> value; // none: the bar stays
    QString text;
};

const QMap<QString, BatchStage>& batchStages()
{
    static const QMap<QString, BatchStage> table{
        {QStringLiteral("open"), {4, QStringLiteral("Opening...")}},
        {QStringLiteral("doc"), {0, QString()}},
        {QStringLiteral("links"), {8, QStringLiteral("Preflighting links...")}},
        {QStringLiteral("fonts"), {60, QStringLiteral("Preflighting fonts...")}},
        {QStringLiteral("colors"), {80, QStringLiteral("Preflighting colors...")}},
        {QStringLiteral("close"), {95, QStringLiteral("Closing...")}},
        {QStringLiteral("end"), {100, QStringLiteral("Finishing...")}},
        {QStringLiteral("stop"), {std::nullopt, QString()}},
    };
    return table;
}

// The preflight's stages move the batch bar within the document's segment.
class BatchStageProgress : public app::ProgressSink {
public:
    explicit BatchStageProgress(std::function<void(const QString&)> showStage) : m_showStage(std::move(showStage)) {}
    void stage(const QString& name, const QString& text) override
    {
        (void)text;
        m_showStage(name);
    }

private:
    std::function<void(const QString&)> m_showStage;
};

// "Cannot ...": the host's brief message, critical.
void alertFailure(app::AlertSink& alerts, const QString& title, const app::Error& error)
{
    app::runAlert(alerts, title, app::withSupportContact(error.message), std::nullopt, true);
}

PreflightedDocument recordOf(const TNFileItem& item, const preflight::PreflightOutcome& outcome,
                             const PackagingResults& results)
{
    PreflightedDocument document;
    document.docItem = item;
    document.tmpLinkData = results.linkData();
    document.tmpFontData = outcome.fontData();
    document.tmpColorData = outcome.colorData();
    document.docInfo = outcome.docInfo;
    document.finalLinkItems = results.linkItems();
    document.finalColorItems = results.colorItems();
    document.finalFontItems = results.fontItems();
    document.statusLine = results.status().text;
    document.preflightProblems = outcome.alerts + outcome.warnings;
    return document;
}

QList<QVariantList> linksOf(const QMap<QString, PreflightedDocument>& documents)
{
    QList<QVariantList> links;
    for (const PreflightedDocument& document : documents)
        links << document.links();
    return links;
}

} // namespace

bool openDocFromInDesign(host::InDesignHost& host, app::AlertSink& alerts, const QString& path)
{
    if (const app::Status opened = host.openDocument(path, false); !opened) {
        alertFailure(alerts, QStringLiteral("Cannot open document"), opened.error());
        return false;
    }
    return true;
}

bool closeDoc1(host::InDesignHost& host, app::AlertSink& alerts, const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    if (const app::Status closed = host.closeDocument(name); !closed) {
        alertFailure(alerts, QStringLiteral("Cannot close document \"%1\"").arg(name), closed.error());
        return false;
    }
    return true;
}

void setInDesignScriptUserInteraction(host::InDesignHost& host, bool interactWithAll)
{
    if (const app::Status set = host.setScriptUserInteraction(interactWithAll); !set)
        app::logFailure(QStringLiteral("set the script user interaction: %1").arg(set.error().text()));
}

QNPreflightToPackageController::QNPreflightToPackageController(host::InDesignHost& host, app::AlertSink& alerts,
                                                               app::ProgressSink& batchBar)
    : m_host(host), m_alerts(alerts), m_batchBar(batchBar)
{
}

bool QNPreflightToPackageController::preflightForPackaging(const QList<TNFileItem>& documents, PackageMode mode,
                                                           const BatchPreflightOptions& options)
{
    app::logUserAction("preflightForPackaging:");
    m_processed.clear();
    m_linksWithoutDuplicates.clear();
    m_sizeOfLinksWithoutDuplicates = 0;
    m_totalSize = {};
    m_failure = {};
    if (documents.isEmpty()) {
        app::runAlert(m_alerts, QStringLiteral("No files to preflight"), app::supportContactLine().trimmed(),
                      std::nullopt, true);
        m_failure = app::makeError(QStringLiteral("No files to preflight"));
        return false;
    }
    m_mode = mode;
    m_numOfDocsInBatch = documents.size();
    m_progressSegmentForDoc = static_cast<double>(100 / documents.size());
    if (options.jobs > 1 && options.hostForJob && documents.size() > 1) {
        if (!preflightSeveralAtOnce(documents, options))
            return false;
    } else {
        for (int index = 0; index < documents.size(); ++index) {
            if (options.cancel != nullptr && options.cancel->isCancelled()) {
                m_failure = app::makeError(QStringLiteral("the preflight was cancelled"));
                return false;
            }
            if (app::Status done = preflightDoc(m_host, documents.at(index), options, index); !done) {
                m_failure = done.error();
                return false;
            }
        }
    }
    app::logLine(QStringLiteral("q empty, done"));
    if (m_mode == PackageMode::Unified)
        composeArrOfLinksWithoutDuplicates();
    m_batchBar.finished();
    return true;
}

bool QNPreflightToPackageController::preflightSeveralAtOnce(const QList<TNFileItem>& documents,
                                                            const BatchPreflightOptions& options)
{
    // The first job works in the controller's host, every other in one of its own.
    std::vector<std::unique_ptr<host::InDesignHost>> hosts(static_cast<size_t>(options.jobs));
    std::vector<std::optional<app::Error>> failures(static_cast<size_t>(documents.size()));
    app::CancelFlag stop; // a failed document ends the batch: no other one starts
    app::parallelFor(documents.size(), {.maxThreads = options.jobs, .cancel = &stop}, [&](int worker, qsizetype index) {
        if (options.cancel != nullptr && options.cancel->isCancelled()) {
            stop.cancel();
            return;
        }
        auto& own = hosts[static_cast<size_t>(worker)];
        if (worker > 0 && !own)
            own = options.hostForJob();
        host::InDesignHost& host = worker == 0 ? m_host : *own;
        if (app::Status done = preflightDoc(host, documents.at(index), options, static_cast<int>(index)); !done) {
            failures[static_cast<size_t>(index)] = done.error();
            stop.cancel();
        }
    });
    // The first document that failed is the one reported, as one at a time would.
    for (const std::optional<app::Error>& failure : failures)
        if (failure) {
            m_failure = *failure;
            return false;
        }
    if (stop.isCancelled() || (options.cancel != nullptr && options.cancel->isCancelled())) {
        m_failure = app::makeError(QStringLiteral("the preflight was cancelled"));
        return false;
    }
    return true;
}

app::Status QNPreflightToPackageController::preflightDoc(host::InDesignHost& host, const TNFileItem& document,
                                                         const BatchPreflightOptions& options, int index)
{
    const DocumentSlot slot{document.name, index + 1, index * m_progressSegmentForDoc};
    {
        std::lock_guard lock(m_mutex);
        useSlot(slot);
        m_batchBarValue = m_startValueOfCurrDoc;
        m_batchBar.setValue(m_batchBarValue);
        m_batchBar.status(composePreflightStatusBaseStr() + QStringLiteral(" Opening..."));
    }
    setInDesignScriptUserInteraction(host, false);
    if (!openDocFromInDesign(host, m_alerts, document.path)) {
        app::logFailure(QStringLiteral("open doc"));
        return app::makeError(QStringLiteral("the document could not be opened"), document.path);
    }
    const QString runFolder = QDir(options.workFolder).filePath(QString::number(index));
    QDir().mkpath(runFolder);
    PackagingResults results(reports::PreflightResults::fixedPreset(options.preset));
    const auto showStage = [this, &slot](const QString& stageKey) {
        std::lock_guard lock(m_mutex);
        useSlot(slot);
        showStageOfCurrentDoc(stageKey);
    };
    BatchStageProgress progress(showStage);
    const DocumentPreflightRequest request{host, preflight::PreflightFolders::inside(runFolder), options.preset,
                                           options.linkFolders, options.cancel};
    const app::Result<preflight::PreflightOutcome> outcome =
        preflightActiveDocument(request, m_alerts, progress, results);
    QDir(runFolder).removeRecursively();
    showStage(QStringLiteral("close"));
    closeDoc1(host, m_alerts, document.path);
    setInDesignScriptUserInteraction(host, true);
    if (!outcome) {
        app::Error failure = outcome.error();
        if (failure.file.isEmpty())
            failure.file = document.path;
        return failure;
    }
    addPreflightDataForProcessedDoc(recordOf(document, *outcome, results));
    showStage(QStringLiteral("end"));
    return {};
}

void QNPreflightToPackageController::useSlot(const DocumentSlot& slot)
{
    m_currentName = slot.name;
    m_indexOfCurrDocInBatch = slot.index;
    m_startValueOfCurrDoc = slot.startValue;
}

void QNPreflightToPackageController::addPreflightDataForProcessedDoc(const PreflightedDocument& document)
{
    std::lock_guard lock(m_mutex);
    m_processed.insert(document.docItem.path, document);
}

const QVariantList& QNPreflightToPackageController::composeArrOfLinksWithoutDuplicates()
{
    m_batchBar.status(QStringLiteral("Checking for duplicate links..."));
    m_linksWithoutDuplicates = package::composeArrOfLinksWithoutDuplicates(linksOf(m_processed));
    m_sizeOfLinksWithoutDuplicates = totalSizeFromArrOfLinks(m_linksWithoutDuplicates);
    return m_linksWithoutDuplicates;
}

qint64 QNPreflightToPackageController::sizeOfLinks() const
{
    if (m_mode == PackageMode::Unified)
        return m_sizeOfLinksWithoutDuplicates;
    return sizeOfLinksCountingDuplicates(linksOf(m_processed));
}

qint64 QNPreflightToPackageController::sizeOfInDesignDocs() const
{
    qint64 total = 0;
    for (const PreflightedDocument& document : m_processed)
        total += static_cast<qint64>(document.docItem.sizeBytes.value_or(0));
    return total;
}

qint64 QNPreflightToPackageController::sizeOfExtraFiles(const QList<TNFileItem>& extras)
{
    qint64 total = 0;
    for (TNFileItem item : extras) {
        if (!item.sizeBytes)
            item.calculateFolderSize();
        total += static_cast<qint64>(item.sizeBytes.value_or(0));
    }
    return total;
}

TotalSizeToPackage QNPreflightToPackageController::calculateTotalSizeToPackage(const QList<TNFileItem>& extras)
{
    m_batchBar.status(QStringLiteral("Calculating total size..."));
    m_totalSize.sizeBytes = sizeOfLinks() + sizeOfInDesignDocs() + sizeOfExtraFiles(extras);
    m_totalSize.sizeStr = app::fileSizeStrFromBytes(static_cast<std::uint64_t>(m_totalSize.sizeBytes));
    return m_totalSize;
}

FreeSpaceCheck QNPreflightToPackageController::evaluateFreeSpace(const QString& location) const
{
    return package::evaluateFreeSpace(m_alerts, true, false, freeSpaceDict(location), m_totalSize.sizeBytes);
}

QString QNPreflightToPackageController::composePreflightStatusBaseStr() const
{
    return QStringLiteral("%1 (%2 of %3):").arg(m_currentName).arg(m_indexOfCurrDocInBatch).arg(m_numOfDocsInBatch);
}

void QNPreflightToPackageController::setBatchPreflightProgressValueToStage(const QString& stageKey)
{
    std::lock_guard lock(m_mutex);
    showStageOfCurrentDoc(stageKey);
}

void QNPreflightToPackageController::showStageOfCurrentDoc(const QString& stageKey)
{
    const auto stage = batchStages().constFind(stageKey);
    if (stage == batchStages().cend())
        return;
    m_batchBar.status(
        stage->text.isEmpty() ? QString() : QStringLiteral("%1 %2").arg(composePreflightStatusBaseStr(), stage->text));
    if (!stage->value)
        return;
    m_batchBarValue = *stage->value * (m_progressSegmentForDoc / 100) + m_startValueOfCurrDoc;
    m_batchBar.setValue(m_batchBarValue);
}

} // namespace quillon::package
