#include "cli/PreflightJob.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Progress.h"
#include "preflight/ControlCenter.h"
#include "preflight/DocumentWarnings.h"
#include "host/InDesignHost.h"
#include "host/OfflineIdmlHost.h"
#include "reports/PreflightResults.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

using namespace quillon::host;

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

// An alert as one line of text: its title and message, without the support line of the desktop.
// Titles that speak of InDesign's "active document" are left out: here the document is the file
// the line names.
QString alertText(const app::AlertRequest& request)
{
    QString message = request.message;
    message.remove(app::supportContactLine());
    message = message.trimmed();
    if (request.title.contains(QLatin1String("active document"), Qt::CaseInsensitive))
        return message.isEmpty() ? QStringLiteral("the document cannot be preflighted") : message;
    return message.isEmpty() ? request.title : request.title + QStringLiteral(": ") + message;
}

// An error about the document itself, which the command line names anyway.
QString errorText(const app::Error& error, const QString& documentPath)
{
    if (!error.file.isEmpty() && QFileInfo(error.file).absoluteFilePath() != QFileInfo(documentPath).absoluteFilePath())
        return error.text();
    return error.where.isEmpty() ? error.message : QStringLiteral("%1: %2").arg(error.where, error.message);
}

QString failureText(const preflight::QNControlCenter& center, const std::vector<app::AlertRequest>& alerts,
                    const QString& path)
{
    if (!center.lastExportError().message.isEmpty())
        return errorText(center.lastExportError(), path);
    for (const app::AlertRequest& alert : alerts)
        if (alert.critical)
            return alertText(alert);
    if (center.lastOutcome() == preflight::QNControlCenter::Outcome::Cancelled)
        return QStringLiteral("the preflight was cancelled");
    return QStringLiteral("the document could not be preflighted");
}

} // namespace

PreflightedDocument preflightDocument(const QString& path, const PreflightJobOptions& options, const QString& runFolder,
                                      const ControlCenterWatch& watch, const StatusReport& statusReport)
{
    PreflightedDocument document;
    document.path = path;
    document.name = QFileInfo(path).fileName();
    host::OfflineIdmlHost host;
    if (const app::Status opened = host.openDocument(path, true); !opened) {
        document.error = errorText(opened.error(), path);
        return document;
    }

    const preflight::PreflightFolders folders = preflight::PreflightFolders::inside(runFolder);
    host.setWorkFolder(folders.workFolder);
    // The driver shows a document it cannot read as an alert without the part's name; asking for
    // the record first keeps it ("designmap.xml: ...").
    if (const app::Result<QStringList> record = host.pathsAndNameOfDocument(host::DocumentReference::active());
        !record) {
        document.error = errorText(record.error(), path);
        return document;
    }
    app::ScriptedAlertSink alerts; // every alert has one answer here: go on
    StatusProgress progress(statusReport);
    reports::PreflightResults results(reports::PreflightResults::fixedPreset(options.preset));
    const QDateTime reportDate = QDateTime::currentDateTime();
    results.setClock([reportDate] { return reportDate; });
    if (options.reportType)
        results.setTextReportType(*options.reportType);

    preflight::QNControlCenter center(host, alerts, progress, results, folders);
    center.setLinkFolders(options.linkFolders);
    center.startup();
    if (watch)
        watch(&center, true);
    if (center.preflightActiveDoc())
        center.waitUntilPreflightIsDone();
    if (watch)
        watch(&center, false);

    const std::vector<app::AlertRequest> requests = alerts.requests();
    if (center.lastOutcome() != preflight::QNControlCenter::Outcome::Completed) {
        document.error = failureText(center, requests, path);
        return document;
    }
    document.preflighted = true;
    for (const app::AlertRequest& request : requests)
        document.warnings << alertText(request);
    document.warnings << preflight::warningTexts(center.warnings());
    document.info = center.currDocInfo();
    document.links = results.linkItems();
    document.fonts = results.fontItems();
    document.colors = results.colorItems();
    document.summary = results.summary().toVariantMap();
    document.status = results.status();
    if (options.reportType) {
        const app::Result<QString> report = center.createTextReport(runFolder);
        QFile file(report ? *report : QString());
        if (report && file.open(QIODevice::ReadOnly)) {
            document.reportFilePath = *report;
            document.reportText = QString::fromUtf8(file.readAll());
        } else {
            document.warnings << (report ? QStringLiteral("the report cannot be read back: %1").arg(*report)
                                         : report.error().text());
        }
    }
    return document;
}

} // namespace quillon::cli
