#include "preflight/LinkAnalysis.h"

#include "idml/IdmlDocument.h"
#include "links/QNIDMLLinksProcessor.h"

#include <cstdint>

namespace quillon::preflight {

LinkAnalysisOutcome analyseLinksInIdml(const LinkAnalysisRequest& request)
{
    links::LinksController controller;
    controller.progress = request.progress;
    controller.cancel = request.cancel;
    controller.alerts = request.alerts;
    controller.isBatchPreflight = request.isBatchPreflight;
    controller.numberOfLinksInDoc = request.numberOfLinksInDoc;
    controller.linkFolders = request.linkFolders;
    links::QNIDMLLinksProcessor processor(controller);
    const QVariantList records =
        request.document ? processor.processLinksInDocument(*request.document, request.documentPath, request.alongside)
                         : QVariantList();

    LinkAnalysisOutcome outcome;
    outcome.visitedAlongside = request.document != nullptr;
    // The count has always been read through a one-byte truth value: 256 links read as none.
    outcome.foundLinks = static_cast<std::uint8_t>(records.size()) != 0;
    const links::PageGeometry& geometry = processor.pageGeometry();
    for (const QStringList& size : geometry.docPageSizeOrder())
        outcome.pageSizes.append({size.value(0), size.value(1), geometry.docPageSizes().value(size)});
    outcome.linkData = processor.linkDataTree();
    outcome.warnings = processor.warnings();
    return outcome;
}

} // namespace quillon::preflight
