#include "preflight/Preflight.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "idml/IdmlDocument.h"
#include "preflight/BatchPreflight.h"
#include "preflight/DocumentWarnings.h"
#include "preflight/IdmlCreator.h"
#include "preflight/PreflightReporting.h"
#include "preflight/PreflightResultsSink.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <exception>
#include <typeinfo>

namespace quillon::preflight {

namespace {

const QString kCannotPreflightTitle = QStringLiteral("Cannot preflight active document");
const QString kConvertedDocumentMessage =
    QStringLiteral("Quillon cannot preflight new unsaved and [Converted] documents. Please save the document with "
                   "the current version of InDesign.");
const QString kGatheringStatus = QStringLiteral("Gathering document info...");

bool removePath(const QFileInfo& item)
{
    if (item.isDir() && !item.isSymLink())
        return QDir(item.absoluteFilePath()).removeRecursively();
    return QFile::remove(item.absoluteFilePath());
}

} // namespace

struct PreflightContext {
    PreflightContext(const PreflightRequest& request, const PreflightSinks& sinks)
        : request(request), sinks(sinks), alerts(sinks.alerts), cancel(request.cancel ? request.cancel : &ownCancel)
    {
    }

    bool cancelled() const { return cancel->isCancelled(); }
    void addWarnings(const QList<app::Error>& more) { addWarningsOnce(outcome.warnings, more); }

    PreflightRequest request;
    PreflightSinks sinks;
    // The stages' alerts, kept for the outcome as well as shown.
    AlertsAsErrors alerts;
    app::CancelFlag ownCancel;
    app::CancelFlag* cancel;
    PreflightOutcome outcome;
    UnpackedDocument unpacked;
    // The font and colour inspections, handed their parts in the link analysis' pass; null when
    // the host inspects otherwise or the pass did not happen, and their stages then ask the host.
    std::unique_ptr<inspection::PartInspection<QVariantList>> fontsFromParts;
    std::unique_ptr<inspection::PartInspection<inspection::ColorInspection>> colorsFromParts;
};

namespace {

QString registrationInTextFlag(const PreflightContext& context)
{
    return context.request.judging.registrationInText ? QStringLiteral("1") : QStringLiteral("0");
}

void forgetInspectionsFromParts(PreflightContext& context)
{
    context.fontsFromParts.reset();
    context.colorsFromParts.reset();
}

// Stage 1: the export and unpacking, then the link analysis. A failed export cancels the rest.
void createAndParseIDMLForInDesignFilePath(PreflightContext& context)
{
    app::logEntry("createAndParseIDML");
    app::logLine(QStringLiteral("----> start idml creator"));
    const QString path = context.outcome.record.posixPath;
    QNIDMLCreator creator(context.request.host);
    creator.setWorkFolder(context.request.folders.workFolder);
    creator.setCancelFlag(context.cancel);
    UnpackStep failedStep = UnpackStep::Export;
    app::Result<UnpackedDocument> unpacked = creator.processInDesignFileAtPath(path, &failedStep);
    app::logLine(QStringLiteral("idmlPath: %1").arg(unpacked ? unpacked->idmlPath : QString()));
    app::logLine(QStringLiteral("----> end idml creator"));
    if (!unpacked) {
        context.outcome.exportError = unpacked.error();
        alertUnpackFailure(failedStep, unpacked.error(), context.alerts, context.sinks.alertReceiver);
        context.cancel->cancel();
        return;
    }
    context.unpacked = std::move(*unpacked);
    if (context.unpacked.repaired)
        context.addWarnings({repairedArchiveWarning()});

    showProgressStage(ProgressStage::Links, context.sinks);
    // One pass over the parts for every stage that reads them: a document too large to keep its
    // parts would otherwise be parsed once per stage.
    std::vector<idml::PartVisitor*> alongside;
    if (context.unpacked.parts) {
        const idml::IdmlDocument& parts = *context.unpacked.parts;
        context.fontsFromParts = context.request.host.fontsFromParts(context.outcome.record, parts, context.cancel);
        context.colorsFromParts = context.request.host.colorsFromParts(context.outcome.record, parts,
                                                                       registrationInTextFlag(context), context.cancel);
        for (idml::PartVisitor* visitor : {static_cast<idml::PartVisitor*>(context.fontsFromParts.get()),
                                           static_cast<idml::PartVisitor*>(context.colorsFromParts.get())})
            if (visitor)
                alongside.push_back(visitor);
    }
    QString failure;
    try {
        LinkAnalysisOutcome found = context.request.linkAnalysis(
            {context.unpacked.parts, path, context.outcome.record.numberOfLinks(), context.request.linkFolders,
             context.sinks.batch != nullptr, &context.sinks.progress, context.cancel, &context.alerts, alongside});
        if (!found.visitedAlongside)
            forgetInspectionsFromParts(context);
        context.outcome.docInfo.setDocPageSizes(found.pageSizes);
        context.outcome.foundLinks = found.foundLinks;
        context.outcome.linkData = std::move(found.linkData);
        context.addWarnings(found.warnings);
        if (!found.foundLinks)
            app::logLine(QStringLiteral("no links"));
        return;
    } catch (const std::exception& exception) {
        failure = QString::fromLocal8Bit(exception.what());
        app::logException(QStringLiteral("exception type: %1").arg(QString::fromLatin1(typeid(exception).name())));
    } catch (...) {
        failure = QStringLiteral("an exception of unknown type");
    }
    forgetInspectionsFromParts(context);
    app::logException(QStringLiteral("exception 398: %1").arg(failure));
    alertLinkAnalysisFailure(failure, context.alerts, context.sinks.alertReceiver);
}

// Stage 2: units, bleed and slug from the IDML's preferences.
void parseDocInfoInIDML(PreflightContext& context)
{
    if (!context.unpacked.parts)
        return;
    if (const app::Status read = context.outcome.docInfo.parseDocInfoInDocument(*context.unpacked.parts); !read)
        context.addWarnings({read.error()});
}

// An inspection's answer: its records go into the outcome and the parts it skipped are warnings;
// one that failed is a warning, and the preflight goes on.
template <typename Found>
void takeInspection(PreflightContext& context, const QString& what,
                    const app::Result<inspection::Inspected<Found>>& inspected, std::optional<Found>& into)
{
    if (!inspected) {
        app::logFailure(QStringLiteral("inspect the %1: %2").arg(what, inspected.error().text()));
        context.addWarnings(
            {app::makeError(QStringLiteral("The %1 could not be inspected: %2").arg(what, inspected.error().text()))});
        return;
    }
    context.addWarnings(inspected->skipped);
    into = inspected->found;
}

// Stages 5 and 7: the inspections, of the export's parts the link analysis parsed already.
void processFonts(PreflightContext& context)
{
    takeInspection(context, QStringLiteral("fonts"),
                   context.fontsFromParts ? context.fontsFromParts->finish()
                                          : context.request.host.processFonts(
                                                context.outcome.record, context.unpacked.parts.get(), context.cancel),
                   context.outcome.fonts);
    context.fontsFromParts.reset();
}

void processColors(PreflightContext& context)
{
    takeInspection(context, QStringLiteral("colors"),
                   context.colorsFromParts
                       ? context.colorsFromParts->finish()
                       : context.request.host.processColors(context.outcome.record, context.unpacked.parts.get(),
                                                            registrationInTextFlag(context), context.cancel),
                   context.outcome.colors);
    context.colorsFromParts.reset();
    // Nothing reads the parts after this: their memory goes back before the results are judged.
    context.unpacked.parts.reset();
}

// Stage 9: the data files, then, unless cancelled, the results shown and the work folder emptied.
void populatePreflightResults(PreflightContext& context)
{
    app::logEntry("populatePreflightResults");
    PreflightOutcome& outcome = context.outcome;
    outcome.alerts = context.alerts.errors();
    const bool cancelled = context.cancelled();
    outcome.ended = cancelled ? PreflightEnding::Cancelled : PreflightEnding::Completed;
    // The data files are written before the results take the link records over to judge them.
    context.addWarnings(writeDataFiles(context.request.folders.dataFolder, outcome));
    if (!cancelled && context.sinks.results)
        context.sinks.results->setItems(outcome);
    showProgressStage(ProgressStage::Stop, context.sinks);
    if (cancelled)
        return;
    if (context.sinks.results)
        context.sinks.results->populateSummaryAndDocInfo(outcome.docInfo);
    clearTmpQuillonFolder(context.request.folders, {QNIDMLCreator::idmlPathForDocument(
                                                       outcome.record.posixPath, context.request.folders.workFolder)});
    if (context.sinks.batch)
        context.sinks.batch->preflightIsDoneForDocAtPath(outcome.record.posixPath);
}

// A stage that shows where the preflight is.
template <ProgressStage stage> void showStage(PreflightContext& context)
{
    showProgressStage(stage, context.sinks);
}

// The stages in the order they run. Each but the last is skipped once the preflight is cancelled;
// the last always runs, to end the bar.
struct NamedStage {
    const char* name;
    void (*run)(PreflightContext& context);
};
constexpr NamedStage kStages[] = {
    {"createAndParseIDML", createAndParseIDMLForInDesignFilePath},
    {"parseDocInfoInIDML", parseDocInfoInIDML},
    {"stage links", showStage<ProgressStage::Links>},
    {"stage fonts", showStage<ProgressStage::Fonts>},
    {"processFonts", processFonts},
    {"stage colors", showStage<ProgressStage::Colors>},
    {"processColors", processColors},
    {"stage end", showStage<ProgressStage::End>},
    {"populatePreflightResults", populatePreflightResults},
};

} // namespace

app::Result<inspection::DocumentRecord>
askDocumentRecord(host::InDesignHost& host, const host::DocumentReference& document, app::AlertSink& alerts)
{
    const app::Result<inspection::DocumentRecord> record = host.pathsAndNameOfDocument(document);
    if (!record) {
        const QString brief = record.error().message;
        app::logLine(QStringLiteral("briefErr: %1").arg(brief));
        const QString message = brief.contains(QLatin1String("no full name")) ? kConvertedDocumentMessage : brief;
        app::runAlert(alerts, kCannotPreflightTitle, app::withSupportContact(message), std::nullopt, true);
        return record;
    }
    if (record->isEmpty()) {
        app::runAlert(alerts, kCannotPreflightTitle, QString(), std::nullopt, true);
        return app::makeError(QStringLiteral("the document cannot be preflighted"), document.name());
    }
    app::logLine(QStringLiteral("hfsPathPOSIXPathName: %1").arg(record->logText()));
    return record;
}

void PreflightContextDeleter::operator()(PreflightContext* context) const
{
    delete context;
}

PreflightRun startPreflight(const PreflightRequest& request, inspection::DocumentRecord record,
                            const PreflightSinks& sinks)
{
    PreflightRun context(new PreflightContext(request, sinks));
    PreflightOutcome& outcome = context->outcome;
    outcome.ended = PreflightEnding::Cancelled; // until the last stage says otherwise
    outcome.judging = request.judging;
    context->addWarnings(request.host.documentWarnings());
    if (const std::optional<app::Error> noPages = noPagesWarning(record))
        context->addWarnings({*noPages});
    outcome.docInfo = inspection::QNDocInfo::docInfoWithRecord(record);
    outcome.record = std::move(record);
    sinks.progress.setMaximum(100); // the bar appears
    if (sinks.results)
        sinks.results->showDocument(outcome.record.fileName, outcome.record.posixPath);
    incrementProgress(sinks.batch ? 0.0 : 4.0, kGatheringStatus, sinks);
    return context;
}

PreflightOutcome runPreflightStages(PreflightContext& context)
{
    for (const NamedStage& stage : kStages) {
        const bool last = &stage == &kStages[std::size(kStages) - 1];
        if (context.cancelled() && !last) {
            app::logLine(QStringLiteral("skip %1: cancelled").arg(QLatin1String(stage.name)));
            continue;
        }
        stage.run(context);
    }
    return std::move(context.outcome);
}

app::Result<PreflightOutcome> preflight(const PreflightRequest& request, const PreflightSinks& sinks)
{
    app::Result<inspection::DocumentRecord> record = askDocumentRecord(request.host, request.document, sinks.alerts);
    if (!record)
        return record.error();
    PreflightRun context = startPreflight(request, std::move(*record), sinks);
    if (context->cancelled()) {
        app::logLine(QStringLiteral("doCancel"));
        showProgressStage(ProgressStage::Stop, sinks);
        return std::move(context->outcome);
    }
    return runPreflightStages(*context);
}

void clearTmpQuillonFolder(const PreflightFolders& folders, const QStringList& ownFiles)
{
    app::logEntry("clearTmpQuillonFolder");
    const QDir work(folders.workFolder);
    QFileInfoList items;
    if (QDir::cleanPath(folders.workFolder) != QDir::cleanPath(folders.dataFolder)) {
        items = work.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    } else {
        // No folder of its own could be made: only this run's files go, never the data files or
        // anything else that shares the folder.
        for (const QString& path : ownFiles)
            if (!path.isEmpty() && QFileInfo::exists(path))
                items << QFileInfo(path);
    }
    if (items.isEmpty())
        app::logFailure(QStringLiteral("get tmp dir contents: %1").arg(folders.workFolder));
    for (const QFileInfo& item : items)
        if (!removePath(item))
            app::logFailure(QStringLiteral("delete tmp file: %1").arg(item.absoluteFilePath()));
}

} // namespace quillon::preflight
