#include "ui/ReportPrinting.h"

#include "app/Log.h"
#include "reportpdf/ReportRenderer.h"

#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>

namespace quillon::ui {

void setReportMargins(QPrinter& printer)
{
    printer.setPageMargins(QMarginsF(reportpdf::kHorizontalMarginPt, reportpdf::kVerticalMarginPt,
                                     reportpdf::kHorizontalMarginPt, reportpdf::kVerticalMarginPt),
                           QPageLayout::Point);
}

bool runPageLayout(QPrinter& printer, bool pageSetupSaved, ReportPageSetup& setup, QWidget* parent)
{
    app::logEntry("runPageLayout");
    if (!pageSetupSaved) {
        app::logLine(QStringLiteral("data == nil"));
        setup = ReportPageSetup();
        const QPageSize current = printer.pageLayout().pageSize();
        printer.setPageSize(QPageSize(current.size(QPageSize::Point), QPageSize::Point, setup.paperName));
        printer.setPageOrientation(setup.portrait ? QPageLayout::Portrait : QPageLayout::Landscape);
    }
    QPageSetupDialog dialog(&printer, parent);
    return dialog.exec() == QDialog::Accepted;
}

bool printReport(const QList<reportpdf::ReportSection>& sections, QPrinter& printer, const ReportPageSetup& setup,
                 QWidget* parent)
{
    setReportMargins(printer);
    app::logLine(QStringLiteral("print"));
    QPrintDialog dialog(&printer, parent);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    return reportpdf::paintReport(sections, printer, setup.scale).has_value();
}

} // namespace quillon::ui
