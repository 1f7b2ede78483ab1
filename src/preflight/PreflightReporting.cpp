#include "preflight/PreflightReporting.h"

#include "app/Company.h"
#include "app/Log.h"
#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "preflight/BatchPreflight.h"
#include "preflight/IdmlCreator.h"
#include "preflight/Preflight.h"
#include "preflight/StoredData.h"

#include <QDir>

#include <array>

namespace quillon::preflight {

namespace {

// The bar value and the status text of each progress stage; a null text leaves the status as is.
struct StageLook {
    ProgressStage stage;
    const char* name;
    double value;
    const char* text;
};
constexpr StageLook kStages[] = {
    {ProgressStage::Doc, "doc", 0, nullptr},
    {ProgressStage::Links, "links", 4, "Preflighting links..."},
    {ProgressStage::Fonts, "fonts", 60, "Preflighting fonts..."},
    {ProgressStage::Colors, "colors", 80, "Preflighting colors..."},
    {ProgressStage::End, "end", 100, "Finishing..."},
    {ProgressStage::Stop, "stop", 0, ""},
};

const StageLook& lookOf(ProgressStage stage)
{
    for (const StageLook& look : kStages)
        if (look.stage == stage)
            return look;
    return kStages[0];
}

} // namespace

QString stageName(ProgressStage stage)
{
    return QString::fromLatin1(lookOf(stage).name);
}

void showProgressStage(ProgressStage stage, const PreflightSinks& sinks)
{
    if (sinks.batch) {
        if (stage != ProgressStage::Stop)
            sinks.batch->setBatchPreflightProgressValueToStage(stage);
        return;
    }
    const StageLook& look = lookOf(stage);
    sinks.progress.stage(stageName(stage), look.text ? QString::fromUtf8(look.text) : QString());
    sinks.progress.setValue(look.value);
    if (stage == ProgressStage::Stop)
        sinks.progress.finished();
}

void incrementProgress(double amount, const QString& status, const PreflightSinks& sinks)
{
    if (sinks.batch) {
        sinks.batch->incrementBatchProgressBy(amount, status);
        return;
    }
    sinks.progress.status(status);
    sinks.progress.increment(amount);
}

void alertUnpackFailure(UnpackStep step, const app::Error& error, app::AlertSink& alerts, QObject* receiver)
{
    switch (step) {
    case UnpackStep::Export: {
        const bool dialogOpen = error.message.contains(QLatin1String("modal dialog or alert is active"));
        app::runAlertOnMainThread(alerts, receiver, dialogOpen ? kDialogOpenAlertTitle : kCannotPreflightAlertTitle,
                                  app::withSupportContact(dialogOpen ? QStringLiteral("Please dismiss the dialog in "
                                                                                      "InDesign before preflighting")
                                                                     : error.message),
                                  std::nullopt, true);
        return;
    }
    case UnpackStep::Repair:
        app::runAlert(alerts, kCannotRepairAlertTitle, error.text(), std::nullopt, true);
        return;
    case UnpackStep::Unpack:
        app::runAlert(alerts, kCannotPreflightAlertTitle, error.text(), std::nullopt, true);
        return;
    }
}

void alertLinkAnalysisFailure(const QString& failure, app::AlertSink& alerts, QObject* receiver)
{
    app::runAlertOnMainThread(
        alerts, receiver, QStringLiteral("Error preflighting links"),
        app::withSupportContact(QStringLiteral("Unexpected error occurred when preflighting links:\n\n%1\n\nPlease "
                                               "report this error and we'll address it promptly: ")
                                    .arg(failure)),
        std::nullopt, true);
}

QList<app::Error> writeDataFiles(const QString& dataFolder, const PreflightOutcome& outcome)
{
    // One after the other: the long record lists of each are written on several threads.
    std::array<app::Status, 3> written;
    if (!outcome.linkData.isEmpty()) {
        app::logLine(QStringLiteral("write qnf_tmpLinkData.plist"));
        written[0] = app::writePropertyListFile(outcome.linkData, QDir(dataFolder).filePath(app::kLinkDataFileName),
                                                app::Durability::Unflushed);
    }
    if (outcome.fonts)
        written[1] = writeFontDataFile(dataFolder, outcome.record.posixPath, *outcome.fonts);
    if (outcome.colors)
        written[2] = writeColorDataFile(dataFolder, outcome.record.posixPath, *outcome.colors);
    QList<app::Error> warnings;
    if (!written[0]) {
        app::logFailure(QStringLiteral("write the link data: %1").arg(written[0].error().text()));
        warnings << app::makeError(
            QStringLiteral("The link data could not be written: %1").arg(written[0].error().text()));
    }
    if (!written[1])
        warnings << app::makeError(
            QStringLiteral("The fonts could not be inspected: %1").arg(written[1].error().text()));
    if (!written[2])
        warnings << app::makeError(
            QStringLiteral("The colors could not be inspected: %1").arg(written[2].error().text()));
    return warnings;
}

int AlertsAsErrors::ask(const app::AlertRequest& request)
{
    QString message = request.message;
    message.remove(app::supportContactLine());
    message = message.trimmed();
    {
        std::lock_guard lock(m_mutex);
        m_errors << app::makeError(message.isEmpty() ? request.title : request.title + QStringLiteral(": ") + message);
    }
    return m_shown.ask(request);
}

QList<app::Error> AlertsAsErrors::errors() const
{
    std::lock_guard lock(m_mutex);
    return m_errors;
}

} // namespace quillon::preflight
