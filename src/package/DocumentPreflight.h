#pragma once

#include "app/Progress.h"
#include "app/Result.h"
#include "preflight/PreflightFolders.h"
#include "preflight/PreflightOutcome.h"
#include "reports/PreflightResults.h"

#include <QStringList>
#include <QVariantMap>

namespace quillon::app {
class AlertSink;
}

namespace quillon::host {
class InDesignHost;
}

namespace quillon::package {

// The judged lists of a document to be packaged, keeping the link records as the preflight found
// them: the judged rows take the outcome's records over, and packaging reads the unjudged ones.
class PackagingResults final : public reports::PreflightResults {
public:
    using reports::PreflightResults::PreflightResults;
    void setItems(preflight::PreflightOutcome& outcome) override;
    const QVariantMap& linkData() const { return m_linkData; }

private:
    QVariantMap m_linkData;
};

// One preflight of the host's active document, judged by a fixed preset.
struct DocumentPreflightRequest {
    host::InDesignHost& host;
    preflight::PreflightFolders folders;
    QVariantMap preset;      // empty: the results are not judged
    QStringList linkFolders; // searched by file name for links missing at their recorded path
    app::CancelFlag* cancel = nullptr;
};

// Runs the preflight on the calling thread and loads `results` with the judged lists. A
// preflight that did not complete is an error: the export's, or "the preflight was cancelled".
app::Result<preflight::PreflightOutcome> preflightActiveDocument(const DocumentPreflightRequest& request,
                                                                 app::AlertSink& alerts, app::ProgressSink& progress,
                                                                 reports::PreflightResults& results);

} // namespace quillon::package
