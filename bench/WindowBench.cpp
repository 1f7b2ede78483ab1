// The main window with a generated document of 10,000 links: filling the lists from a
// preflight's outcome, sorting them, and how long the window stays blocked during a preflight.
#include "IdmlGenerator.h"
#include "host/OfflineIdmlHost.h"
#include "package/DocumentPreflight.h"
#include "results/Presets.h"
#include "ui/MainWindow.h"
#include "ui/ResultLists.h"
#include "ui/SummaryModel.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTreeView>

#include <benchmark/benchmark.h>

#include <iostream>

using namespace quillon;

namespace {

QTemporaryDir* gFolder = nullptr;
QString gDocument;
preflight::PreflightOutcome gOutcome;

void prepare()
{
    gFolder = new QTemporaryDir;
    gDocument = QDir(gFolder->path()).filePath(QStringLiteral("TenThousand.idml"));
    bench::IdmlShape shape;
    shape.spreads = 2500;
    shape.linksPerSpread = 4;
    shape.paragraphsPerStory = 2;
    shape.swatches = 40;
    shape.paragraphStyles = 10;
    bench::writeGeneratedIdml(gDocument, shape);
    host::OfflineIdmlHost host;
    (void)host.openDocument(gDocument, false);
    app::ScriptedAlertSink alerts;
    app::NullProgressSink progress;
    package::PackagingResults results(reports::PreflightResults::fixedPreset(results::defaultPreset()));
    app::Result<preflight::PreflightOutcome> outcome = package::preflightActiveDocument(
        {host,
         preflight::PreflightFolders::inside(QDir(gFolder->path()).filePath(QStringLiteral("data"))),
         results::defaultPreset(),
         {},
         nullptr},
        alerts, progress, results);
    if (outcome) {
        gOutcome = std::move(*outcome);
        gOutcome.linkData = results.linkData(); // what the worker hands on
    }
}

// From the outcome arriving to the lists shown: the judging and summary (the worker's share) and
// the models filled and the visible rows drawn (the main thread's share).
void BM_FillListsFromOutcome(benchmark::State& state)
{
    ui::LinksModel links;
    ui::FontsModel fonts;
    ui::ColorsModel colors;
    ui::SummaryModel summary;
    QTreeView view;
    view.setModel(&links);
    view.setUniformRowHeights(true);
    view.resize(940, 420);
    view.show();
    for (auto _ : state) {
        preflight::PreflightOutcome outcome = gOutcome;
        reports::PreflightResults results(reports::PreflightResults::fixedPreset(results::defaultPreset()));
        results.setItems(outcome);
        results.populateSummaryAndDocInfo(outcome.docInfo);
        links.setRows(results.linkItems());
        fonts.setRows(results.fontItems());
        colors.setRows(results.colorItems());
        summary.setSections(results.summary().items());
        benchmark::DoNotOptimize(view.grab());
    }
    state.counters["links"] = double(links.rowCount());
}
BENCHMARK(BM_FillListsFromOutcome)->Unit(benchmark::kMillisecond);

void BM_SortTenThousandLinks(benchmark::State& state)
{
    preflight::PreflightOutcome outcome = gOutcome;
    reports::PreflightResults results(reports::PreflightResults::fixedPreset(results::defaultPreset()));
    results.setItems(outcome);
    ui::LinksModel links;
    links.setRows(results.linkItems());
    const int column = links.columnOf(QString::fromUtf8(state.range(0) == 0 ? "name" : "size"));
    bool ascending = false;
    for (auto _ : state) {
        links.sort(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        ascending = !ascending;
    }
    state.counters["links"] = double(links.rowCount());
}
BENCHMARK(BM_SortTenThousandLinks)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The longest the window's event loop waits between two 5 ms ticks while the document is
// preflighted from the window, reported as the time of one run.
void BM_LongestBlockDuringPreflight(benchmark::State& state)
{
    for (auto _ : state) {
        QTemporaryDir folder;
        ui::MainWindowServices services;
        services.folders = preflight::PreflightFolders::inside(folder.filePath(QStringLiteral("data")));
        services.settingsFile = folder.filePath(QStringLiteral("settings.ini"));
        services.presetsFolder = folder.filePath(QStringLiteral("Presets"));
        ui::MainWindow window(nullptr, services);
        window.setAlertPresenter([](const app::AlertRequest&) { return app::kAlertFirstButton; });
        window.resize(1280, 800);
        window.show();
        QSignalSpy finished(&window, &ui::MainWindow::preflightFinished);
        qint64 longest = 0;
        QElapsedTimer sinceTick;
        QTimer ticks;
        ticks.setInterval(5);
        QObject::connect(&ticks, &QTimer::timeout, [&] { longest = std::max(longest, sinceTick.restart()); });
        sinceTick.start();
        ticks.start();
        window.openDocument(gDocument);
        finished.wait(600000);
        ticks.stop();
        state.SetIterationTime(double(longest) / 1000.0);
        state.counters["links"] = double(window.linksModel()->rowCount());
    }
}
BENCHMARK(BM_LongestBlockDuringPreflight)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    prepare();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete gFolder;
    return 0;
}
