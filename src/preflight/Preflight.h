#pragma once

#include "app/Progress.h"
#include "app/Result.h"
#include "host/InDesignHost.h"
#include "preflight/LinkAnalysis.h"
#include "preflight/PreflightFolders.h"
#include "preflight/PreflightOutcome.h"
#include "preflight/UnpackedDocument.h"

#include <QStringList>

#include <memory>

class QObject;

namespace quillon::app {
class AlertSink;
} // namespace quillon::app

namespace quillon::preflight {

class BatchPreflight;
class PreflightResultsSink;

// What to preflight and how: everything is read before the stages start, so that nothing a
// stage does depends on settings read on the way.
struct PreflightRequest {
    host::InDesignHost& host;
    host::DocumentReference document = host::DocumentReference::active();
    PreflightFolders folders{};
    JudgingInputs judging{};
    QStringList linkFolders{}; // searched by file name for links missing at their recorded path
    LinkAnalysis linkAnalysis = analyseLinksInIdml;
    // Set from any thread to stop; none: the preflight cannot be cancelled from outside.
    app::CancelFlag* cancel = nullptr;
};

// Where a preflight shows what it does. Alerts and progress come from the thread the stages run
// on; the results sink, when there is one, gets the outcome at the end.
struct PreflightSinks {
    app::AlertSink& alerts;
    app::ProgressSink& progress;
    PreflightResultsSink* results = nullptr;
    BatchPreflight* batch = nullptr;  // in a batch, progress and the end go to the batch
    QObject* alertReceiver = nullptr; // gets the answers of alerts shown from the worker
};

// The record of the document to preflight. A host that answers with an error, or with nothing,
// has the user alerted ("Cannot preflight active document") and gives the error.
app::Result<inspection::DocumentRecord>
askDocumentRecord(host::InDesignHost& host, const host::DocumentReference& document, app::AlertSink& alerts);

// One preflight on the calling thread: the record, then the stages. The error is the host's when
// it named no document; otherwise the outcome says how the preflight ended.
app::Result<PreflightOutcome> preflight(const PreflightRequest& request, const PreflightSinks& sinks);

// What the stages share while they run; only the stages see inside.
struct PreflightContext;
struct PreflightContextDeleter {
    void operator()(PreflightContext* context) const;
};
using PreflightRun = std::unique_ptr<PreflightContext, PreflightContextDeleter>;

// The preparation of a preflight whose record is known, on the calling thread: the document's
// information, the warnings about it, the bar and the document shown. The stages then run with
// runPreflightStages, on any one thread.
PreflightRun startPreflight(const PreflightRequest& request, inspection::DocumentRecord record,
                            const PreflightSinks& sinks);
PreflightOutcome runPreflightStages(PreflightContext& context);

// Empties the work folder (hidden files stay); failures are logged and skipped. When the work
// folder is the data folder, only `ownFiles` go.
void clearTmpQuillonFolder(const PreflightFolders& folders, const QStringList& ownFiles);

} // namespace quillon::preflight
