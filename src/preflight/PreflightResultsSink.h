#pragma once

#include "app/Result.h"

#include <QString>
#include <QVariantMap>

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
    // "1" when the current preset asks the colour inspection to count Registration applied to
    // text, "0" otherwise (calling thread, before the stages run).
    virtual QString registrationInTextFlag() { return QStringLiteral("0"); }

    // Loads the three data files of `dataFolder` into the link, font and colour lists and judges
    // them with the current checkup preset. `linkData`, when not empty, is what the link data
    // file holds, handed over so that it need not be read again.
    virtual void setItems(const QString& dataFolder, QVariantMap linkData = {}) = 0;
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
