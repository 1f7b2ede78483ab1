#pragma once

#include "app/Result.h"
#include "inspection/DocInfo.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <vector>

namespace quillon::app {
class AlertSink;
class CancelFlag;
class ProgressSink;
} // namespace quillon::app

namespace quillon::idml {
class IdmlDocument;
class PartVisitor;
} // namespace quillon::idml

namespace quillon::preflight {

// One run of the link analysis over the parts of an IDML export, as the driver starts it.
struct LinkAnalysisRequest {
    std::shared_ptr<const idml::IdmlDocument> document;
    QString documentPath;        // the document's POSIX path, the data file's key
    int numberOfLinksInDoc = -1; // as the host reported it; negative when unknown
    QStringList linkFolders;     // searched by file name for links missing at their recorded path
    bool isBatchPreflight = false;
    app::ProgressSink* progress = nullptr; // per-spread status
    app::CancelFlag* cancel = nullptr;
    app::AlertSink* alerts = nullptr; // the file readers' alerts
    // The later stages' readers of the parts, handed their parts in the analysis' pass.
    std::vector<idml::PartVisitor*> alongside;
};

struct LinkAnalysisOutcome {
    // The analysis' truth value: links were found (see QNIDMLLinksProcessor for its quirk).
    bool foundLinks = false;
    // The document's page sizes in the order met.
    inspection::DocPageSizes pageSizes;
    // What "qnf_tmpLinkData.plist" is to hold (the caller writes it); empty when the analysis was
    // cancelled.
    QVariantMap linkData;
    // The parts that could not be read and were skipped, each named.
    QList<app::Error> warnings;
    // The `alongside` readers were handed their parts; otherwise their stages read them.
    bool visitedAlongside = false;
};

// The analysis the driver runs; replaceable so that tests can make it fail.
using LinkAnalysis = std::function<LinkAnalysisOutcome(const LinkAnalysisRequest& request)>;

// The IDML link analysis of the links layer.
LinkAnalysisOutcome analyseLinksInIdml(const LinkAnalysisRequest& request);

} // namespace quillon::preflight
