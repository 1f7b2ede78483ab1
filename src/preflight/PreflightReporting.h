#pragma once

#include "app/Alerts.h"
#include "app/Result.h"
#include "preflight/PreflightOutcome.h"
#include "preflight/ProgressStage.h"
#include "preflight/UnpackedDocument.h"

#include <QList>
#include <QString>

#include <mutex>

namespace quillon::preflight {

struct PreflightSinks;

// How a preflight shows itself: the bar and its status texts, the alerts, and the data files it
// leaves. The stages say what happened; the words and the files are made here.

// The bar's value and status text of a stage, or, in a batch, the batch's progress ("stop" is
// not the batch's business).
void showProgressStage(ProgressStage stage, const PreflightSinks& sinks);
// Adds `amount` to the bar with a status text (or to the batch's bar).
void incrementProgress(double amount, const QString& status, const PreflightSinks& sinks);

// The alert of a failed export or unpacking, worded for the step that failed.
void alertUnpackFailure(UnpackStep step, const app::Error& error, app::AlertSink& alerts, QObject* receiver);
// The alert of a link analysis that ended in an exception.
void alertLinkAnalysisFailure(const QString& failure, app::AlertSink& alerts, QObject* receiver);

// Writes the data files of what the outcome holds ("qnf_tmpLinkData.plist" and the others) into
// `dataFolder`; a file that cannot be written is a warning.
QList<app::Error> writeDataFiles(const QString& dataFolder, const PreflightOutcome& outcome);

// Passes alerts on and keeps each as the error a user reads: its title and message without the
// support line. Thread-safe: the file readers of the link analysis alert from several threads.
class AlertsAsErrors : public app::AlertSink {
public:
    explicit AlertsAsErrors(app::AlertSink& shown) : m_shown(shown) {}
    int ask(const app::AlertRequest& request) override;
    QList<app::Error> errors() const;

private:
    app::AlertSink& m_shown;
    mutable std::mutex m_mutex;
    QList<app::Error> m_errors;
};

} // namespace quillon::preflight
