#pragma once

#include "app/Result.h"
#include "preflight/PreflightOutcome.h"

#include <QString>

namespace quillon::inspection {
class QNDocInfo;
} // namespace quillon::inspection

namespace quillon::preflight {

using inspection::QNDocInfo;

// Whoever shows the results of a preflight: the desktop's result lists, the command line's
// printer, a test. The driver sits below the result lists and the reports, so it reaches them
// only through this. Calls come from the preflight's worker thread unless stated; an
// implementation that drives widgets hands them to the main thread and waits.
class PreflightResultsSink {
public:
    virtual ~PreflightResultsSink() = default;

    // Before a preflight (calling thread): empty the result lists.
    virtual void clearAllResults() = 0;
    // The document about to be preflighted (calling thread): window title and represented file.
    virtual void showDocument(const QString& name, const QString& path)
    {
        (void)name;
        (void)path;
    }
    // The current checkup preset, read once as a preflight starts (calling thread): the
    // preflight's results are judged by it.
    virtual JudgingInputs judgingInputs() { return {}; }

    // Loads the outcome's link, font and colour records into the lists, judged by the preset
    // the outcome carries. The link records are taken out of the outcome (its `linkData` is left
    // empty) and judged in place: a large document's links are never held twice.
    virtual void setItems(PreflightOutcome& outcome) = 0;
    // Loads the lists from the three data files of `dataFolder` (a batch document's results
    // written back there), judged by the current preset (calling thread).
    virtual void setItemsFromDataFiles(const QString& dataFolder) = 0;
    // Loads the summary and the document-information box from the lists and `docInfo`, whose
    // `hasPreflightErrors` it sets.
    virtual void populateSummaryAndDocInfo(QNDocInfo& docInfo) = 0;

    // Writes the text report of the lists into `targetFolder` (calling thread); gives the file.
    virtual app::Result<QString> createTextReport(const QString& targetFolder, const QString& paraStylesReport,
                                                  const QNDocInfo& docInfo) = 0;

    // The user chose another checkup preset (calling thread): it becomes the current one and
    // whatever the lists show is judged again with it.
    virtual void presetsPopup(const QString& title) = 0;
};

} // namespace quillon::preflight
