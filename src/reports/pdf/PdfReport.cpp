#include "reportpdf/PdfReport.h"

#include "app/Alerts.h"
#include "app/Log.h"
#include "reportpdf/PdfAnnotations.h"
#include "reportpdf/ReportRenderer.h"

#include <QDir>
#include <QTemporaryFile>

namespace quillon::reportpdf {

QString pdfReportFileName(const QString& docName)
{
    return docName + QStringLiteral("_Quillon_Report.pdf");
}

app::Result<QString> writePdfReport(QList<ReportSection> sections, const QString& folder, const QString& fileName,
                                    reports::QNTextReport::ExistingFile existing)
{
    app::logEntry("saveReportAsPDFWithAnnots");
    const QString target = QDir(folder).filePath(fileName);
    // Hidden and uniquely named, so that it never meets a user's file or another run's.
    QTemporaryFile printed(QDir(folder).filePath(QStringLiteral(".quillon-XXXXXX-print.pdf")));
    if (!printed.open())
        return app::makeError(QStringLiteral("the report cannot be written: %1").arg(printed.errorString()), target);
    markSharedLinks(sections);
    app::Result<RenderedReport> rendered = renderReport(sections, printed);
    if (!rendered)
        return app::makeError(rendered.error().message, target);
    if (!printed.flush() || printed.error() != QFileDevice::NoError)
        return app::makeError(QStringLiteral("the report cannot be written: %1").arg(printed.errorString()), target);
    const AnnotatedPdf annotated = annotatePdf(printed.fileName(), rendered->annotations);
    if (!annotated.error.isEmpty())
        return app::makeError(QStringLiteral("the report cannot be annotated: %1").arg(annotated.error), target);
    return reports::QNTextReport::saveReportFile(annotated.bytes, folder, fileName, existing);
}

bool documentReadyForReport(const QString& currDocPath, app::AlertSink& alerts)
{
    if (!currDocPath.isEmpty())
        return true;
    app::runAlert(alerts, QStringLiteral("Please preflight a document first"),
                  QStringLiteral("Please preflight a document before setting up report."), std::nullopt, false);
    return false;
}

} // namespace quillon::reportpdf
