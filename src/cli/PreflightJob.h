#pragma once

#include "inspection/DocInfo.h"
#include "reportpdf/ReportContent.h"
#include "reports/TextReport.h"
#include "results/DocumentChecks.h"
#include "results/Summary.h"

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::cli {

// What every document of one `quillon preflight` run shares.
struct PreflightJobOptions {
    QVariantMap preset;      // the checkup preset the results are judged by
    QStringList linkFolders; // searched by file name for links missing at their recorded path
    // The layout of the text report to make, or nothing when none is wanted.
    std::optional<reports::TextReportType> reportType;
    bool printParaStyles = false; // the report ends with the paragraph styles ("printParas")
    bool pdfReport = false;       // make the content of the PDF report
    QString presetName;           // named in the PDF report
};

// One document's preflight as the command line reports it.
struct PreflightedDocument {
    QString path; // as given on the command line
    QString name; // its file name
    bool preflighted = false;
    QString error;        // why it could not be preflighted
    QStringList warnings; // what went wrong without stopping the preflight
    QString outputError;  // a result that could not be written (the report file)
    inspection::QNDocInfo info;
    QVariantList links;
    QVariantList fonts;
    QVariantList colors;
    QVariantMap summary; // section title -> {row title: value}
    results::PreflightStatus status;
    // The preset's document checks: their alerts, and whether it has any (shown only then). What
    // could not be checked is among `warnings`.
    results::DocumentJudgement documentChecks;
    QString reportText;                                // the text report, when one was asked for
    std::optional<reportpdf::ReportSection> pdfReport; // when one was asked for
};

// Receives the status texts of the stages.
using StatusReport = std::function<void(const QString& status)>;

// Preflights the IDML file at `path` with the offline host, in `runFolder` (a folder of its own,
// left for the caller to remove), on the calling thread. Setting `cancel` stops it.
PreflightedDocument preflightDocument(const QString& path, const PreflightJobOptions& options, const QString& runFolder,
                                      app::CancelFlag& cancel, const StatusReport& statusReport);

} // namespace quillon::cli
