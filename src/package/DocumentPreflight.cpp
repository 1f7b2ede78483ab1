#include "package/DocumentPreflight.h"

#include "preflight/Preflight.h"
#include "reports/PreflightResults.h"

namespace quillon::package {

void PackagingResults::setItems(preflight::PreflightOutcome& outcome)
{
    m_linkData = outcome.linkData;
    reports::PreflightResults::setItems(outcome);
}

app::Result<preflight::PreflightOutcome> preflightActiveDocument(const DocumentPreflightRequest& request,
                                                                 app::AlertSink& alerts, app::ProgressSink& progress,
                                                                 reports::PreflightResults& results)
{
    const preflight::PreflightRequest preflightRequest{
        request.host,        host::DocumentReference::active(),
        request.folders,     reports::PreflightResults::judgingInputsFor(request.preset),
        request.linkFolders, preflight::analyseLinksInIdml,
        request.cancel};
    app::Result<preflight::PreflightOutcome> outcome =
        preflight::preflight(preflightRequest, {alerts, progress, &results});
    if (!outcome)
        return outcome.error();
    if (outcome->ended != preflight::PreflightEnding::Completed)
        return outcome->exportError ? *outcome->exportError
                                    : app::makeError(QStringLiteral("the preflight was cancelled"));
    return outcome;
}

} // namespace quillon::package
