// The PDF report of the generated 1,000-spread document with 10,000 links (none of their files on
// disk, so every link row carries an alert line: the tallest report): its content built from the
// judged lists, painted, annotated (a note on every link row) and written through its
// intermediate file. The preflight runs once, before the timing.
//
// Peak memory is reported as "maxRSS_MB"; the command's own (`quillon preflight --format pdf`)
// is best read with /usr/bin/time -v.
#include "IdmlGenerator.h"

#include "app/Alerts.h"
#include "app/Progress.h"
#include "host/OfflineIdmlHost.h"
#include "package/DocumentPreflight.h"
#include "reportpdf/PdfReport.h"
#include "reports/PreflightResults.h"
#include "results/Presets.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <iostream>
#include <optional>

namespace {

using namespace quillon;

struct Preflighted {
    QTemporaryDir dir;
    std::optional<reportpdf::ReportInputs> inputs;

    Preflighted()
    {
        bench::IdmlShape shape;
        shape.linksPerSpread = 10;
        shape.paragraphStyles = 20;
        shape.swatches = 30;
        shape.extraFonts = 40;
        const QString document = dir.filePath(QStringLiteral("Catalogue.idml"));
        if (bench::writeGeneratedIdml(document, shape).entries == 0)
            return;
        host::OfflineIdmlHost host;
        if (!host.openDocument(document, true))
            return;
        app::ScriptedAlertSink alerts;
        app::NullProgressSink progress;
        const QVariantMap preset = results::defaultPreset();
        reports::PreflightResults results(reports::PreflightResults::fixedPreset(preset));
        const package::DocumentPreflightRequest request{
            host, preflight::PreflightFolders::inside(dir.filePath(QStringLiteral("work"))), preset, {}, nullptr};
        host.setWorkFolder(request.folders.workFolder);
        const auto outcome = package::preflightActiveDocument(request, alerts, progress, results);
        if (!outcome)
            return;
        inputs =
            reportpdf::reportInputs(results.fontItems(), results.colorItems(), results.linkItems(), outcome->docInfo);
        inputs->userName = QStringLiteral("Bench");
        inputs->reportDate = QDateTime::currentDateTime();
        std::cerr << "links: " << results.linkItems().size() << ", fonts: " << results.fontItems().size()
                  << ", colors: " << results.colorItems().size() << "\n";
    }
};

Preflighted& preflighted()
{
    static Preflighted instance;
    return instance;
}

void pdfReportOf10000Links(benchmark::State& state)
{
    if (!preflighted().inputs) {
        state.SkipWithError("the document could not be preflighted");
        return;
    }
    QTemporaryDir out;
    qint64 bytes = 0;
    for (auto _ : state) {
        const app::Result<QString> written = reportpdf::writePdfReport(
            {reportpdf::reportSection(*preflighted().inputs)}, out.path(),
            QStringLiteral("Catalogue.idml_Quillon_Report.pdf"), reports::QNTextReport::ExistingFile::Replace);
        if (!written) {
            state.SkipWithError(written.error().text().toStdString().c_str());
            break;
        }
        bytes = QFileInfo(*written).size();
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["MB"] = static_cast<double>(bytes) / 1e6;
    state.counters["maxRSS_MB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
}

BENCHMARK(pdfReportOf10000Links)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    preflighted();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
