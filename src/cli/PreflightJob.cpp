#include "cli/PreflightJob.h"

#include "app/Alerts.h"
#include "app/Progress.h"
#include "host/OfflineIdmlHost.h"
#include "package/DocumentPreflight.h"
#include "preflight/DocumentWarnings.h"
#include "reports/PreflightResults.h"

#include <QFileInfo>

namespace quillon::cli {

namespace {

// Hands the stage and status texts of the driver on; the bar itself is not drawn.
class StatusProgress : public app::ProgressSink {
public:
    explicit StatusProgress(const StatusReport& report) : m_report(report) {}
    void stage(const QString& name, const QString& text) override
    {
        (void)name;
        status(text);
    }
    void status(const QString& text) override
    {
        if (m_report && !text.isEmpty())
            m_report(text);
    }

private:
    const StatusReport& m_report;
};

// An error about the document itself, which the command line names anyway.
QString errorText(const app::Error& error, const QString& documentPath)
{
    if (!error.file.isEmpty() && QFileInfo(error.file).absoluteFilePath() != QFileInfo(documentPath).absoluteFilePath())
        return error.text();
    return error.where.isEmpty() ? error.message : QStringLiteral("%1: %2").arg(error.where, error.message);
}

} // namespace

PreflightedDocument preflightDocument(const QString& path, const PreflightJobOptions& options, const QString& runFolder,
                                      app::CancelFlag& cancel, const StatusReport& statusReport)
{
    PreflightedDocument document;
    document.path = path;
    document.name = QFileInfo(path).fileName();
    host::OfflineIdmlHost host;
    if (const app::Status opened = host.openDocument(path, true); !opened) {
        document.error = errorText(opened.error(), path);
        return document;
    }

    app::ScriptedAlertSink alerts; // every alert has one answer here: go on
    StatusProgress progress(statusReport);
    reports::PreflightResults results(reports::PreflightResults::fixedPreset(options.preset));
    const package::DocumentPreflightRequest request{host, preflight::PreflightFolders::inside(runFolder),
                                                    options.preset, options.linkFolders, &cancel};
    host.setWorkFolder(request.folders.workFolder);
    const app::Result<preflight::PreflightOutcome> outcome =
        package::preflightActiveDocument(request, alerts, progress, results);
    if (!outcome) {
        document.error = errorText(outcome.error(), path);
        return document;
    }
    document.preflighted = true;
    document.warnings = preflight::warningTexts(outcome->alerts) + preflight::warningTexts(outcome->warnings);
    document.info = outcome->docInfo;
    document.links = results.linkItems();
    document.fonts = results.fontItems();
    document.colors = results.colorItems();
    document.summary = results.summary().toVariantMap();
    document.status = results.status();
    document.documentChecks = results.documentJudgement();
    document.warnings += document.documentChecks.warnings;
    QString paraStyles;
    if (options.printParaStyles && (options.reportType || options.pdfReport))
        if (const auto report = host.paraReport(document.name, nullptr))
            paraStyles = report->found;
    if (options.reportType)
        document.reportText = results.textReport(*options.reportType, paraStyles, outcome->docInfo);
    if (options.pdfReport) {
        reportpdf::ReportInputs inputs =
            reportpdf::reportInputs(document.fonts, document.colors, document.links, outcome->docInfo,
                                    results.summary().items(), document.status);
        reportpdf::stampReport(inputs, options.presetName);
        inputs.paraStyles = paraStyles;
        document.pdfReport = reportpdf::reportSection(inputs);
    }
    return document;
}

} // namespace quillon::cli
