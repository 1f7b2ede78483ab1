#include "preflight/LinkAnalysis.h"

#include "preflight/PageSizes.h"

namespace quillon::preflight {

LinkAnalysisOutcome analyseLinksInIdml(const LinkAnalysisRequest& request)
{
    QNDocInfo sizes;
    sizes.setDocPageSizesDict(pageSizesInIdmlFolder(request.idmlFolder));
    return {false, sizes.docPageSizes(), {}};
}

} // namespace quillon::preflight
