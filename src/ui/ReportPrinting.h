#pragma once

#include "reportpdf/ReportContent.h"

#include <QList>
#include <QString>

class QPrinter;
class QWidget;

namespace quillon::ui {

// The page setup of the report when none is saved ("printPageSetup"): the paper is named "kaka",
// a name no paper has, so the printer's own paper size is used under that name (kept as the
// report has always done it); portrait; everything drawn at 0.7.
struct ReportPageSetup {
    QString paperName = QStringLiteral("kaka");
    bool portrait = true;
    double scale = 0.7;
};

// The report's margins on `printer`: 24 points left and right, 18 top and bottom.
void setReportMargins(QPrinter& printer);

// runPageLayout: with no saved page setup the defaults go onto `printer` first; then the page
// setup dialog runs modally. True when the user accepted it.
bool runPageLayout(QPrinter& printer, bool pageSetupSaved, ReportPageSetup& setup, QWidget* parent);

// printReportFinalStage: the report's margins, the print dialog, then the sections painted at the
// setup's scale. False when the user cancelled or the printer could not be painted on.
bool printReport(const QList<reportpdf::ReportSection>& sections, QPrinter& printer, const ReportPageSetup& setup,
                 QWidget* parent);

} // namespace quillon::ui
