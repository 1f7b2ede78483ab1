#pragma once

#include "app/Result.h"
#include "reportpdf/ReportContent.h"
#include "reports/TextReport.h"

#include <QList>
#include <QString>

namespace quillon::app {
class AlertSink;
}

namespace quillon::reportpdf {

// "<docName>_Quillon_Report.pdf".
QString pdfReportFileName(const QString& docName);

// Writes the sections (one per document) as the annotated PDF report `folder`/`fileName`. The
// pages are painted into an intermediate file ending in "-print.pdf" in the same folder (removed
// afterwards, whatever happens), annotated, and the result saved through a temporary file
// renamed into place, so an earlier report is never lost to a failed write. A file already of
// that name is kept and the report numbered unless `existing` says replace. Returns the path.
app::Result<QString> writePdfReport(QList<ReportSection> sections, const QString& folder, const QString& fileName,
                                    reports::QNTextReport::ExistingFile existing);

// False, after the informational alert, when no document has been preflighted (`currDocPath`
// empty): no report is made then.
bool documentReadyForReport(const QString& currDocPath, app::AlertSink& alerts);

} // namespace quillon::reportpdf
