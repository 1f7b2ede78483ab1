// A whole preflight: the generated 1,000-spread document with 10,000 links whose files are on
// disk, exported (copied), unpacked, links analysed, fonts and colours inspected, results judged
// and summed up; in process through the driver, and as `quillon preflight` runs it. Then 100
// small documents through the command with one and with two jobs.
//
// Peak memory of the in-process run is reported as "maxRSS_MB" (the command's is best read with
// /usr/bin/time -v: a child's own count starts with the copy of this process it was forked from).
#include "IdmlGenerator.h"

#include "app/Alerts.h"
#include "app/Progress.h"
#include "host/OfflineIdmlHost.h"
#include "preflight/Preflight.h"
#include "reports/PreflightResults.h"
#include "results/Presets.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <iostream>

namespace {

using namespace quillon;
using namespace quillon::host;
using namespace quillon::preflight;

struct Documents {
    QTemporaryDir dir;
    QString large;
    QStringList small;

    Documents()
    {
        const bench::PreflightDocuments written = bench::writePreflightDocuments(dir.path());
        large = written.large;
        small = written.small;
        std::cerr << "large: " << written.largeFacts.entries << " entries, " << written.largeFacts.xmlBytes / 1e6
                  << " MB of XML, " << written.largeFacts.linkedFiles << " linked files\n";
    }
};

Documents& documents()
{
    static Documents instance;
    return instance;
}

double maxRssMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void preflightInProcess(benchmark::State& state)
{
    const QString document = documents().large;
    const QVariantMap preset = results::defaultPreset();
    qsizetype links = 0;
    for (auto _ : state) {
        QTemporaryDir run;
        host::OfflineIdmlHost host;
        if (!host.openDocument(document, true)) {
            state.SkipWithError("the document cannot be opened");
            break;
        }
        app::ScriptedAlertSink alerts;
        app::NullProgressSink progress;
        reports::PreflightResults results(reports::PreflightResults::fixedPreset(preset));
        const preflight::PreflightRequest request{host, host::DocumentReference::active(),
                                                  preflight::PreflightFolders::inside(run.path()),
                                                  reports::PreflightResults::judgingInputsFor(preset)};
        const auto outcome = preflight::preflight(request, {alerts, progress, &results});
        links = results.linkItems().size();
        if (!outcome || outcome->ended != preflight::PreflightEnding::Completed || results.fontItems().isEmpty() ||
            results.colorItems().isEmpty())
            state.SkipWithError("the preflight did not complete");
    }
    state.counters["links"] = static_cast<double>(links);
    state.counters["maxRSS_MB"] = maxRssMegabytes();
}

// Runs `quillon preflight` on the documents; the time is the command's, start to end.
void runCommand(benchmark::State& state, const QStringList& docs, int jobs)
{
    for (auto _ : state) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QUILLON_SUPPORT_DIR"), documents().dir.filePath(QStringLiteral("support")));
        process.setProcessEnvironment(environment);
        QStringList arguments{QStringLiteral("preflight"), QStringLiteral("--format"), QStringLiteral("json"),
                              QStringLiteral("--jobs"), QString::number(jobs)};
        QElapsedTimer timer;
        timer.start();
        process.start(QStringLiteral(QUILLON_CLI_PATH), arguments + docs);
        if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit || process.exitCode() > 1) {
            state.SkipWithError("the command failed");
            break;
        }
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) / 1e9);
        benchmark::DoNotOptimize(process.readAllStandardOutput());
    }
    state.counters["documents"] = static_cast<double>(docs.size());
}

void commandLargeDocument(benchmark::State& state)
{
    runCommand(state, {documents().large}, 1);
}

void commandSmallDocuments(benchmark::State& state)
{
    runCommand(state, documents().small, static_cast<int>(state.range(0)));
}

BENCHMARK(preflightInProcess)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(commandLargeDocument)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(commandSmallDocuments)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    return quillon::bench::runBenchmarks(argc, argv, [] { documents(); });
}
