// The link analysis of a large document: 1,000 spreads, 10,000 links whose files are on disk,
// files read included. Peak memory is reported as the counter "maxRSS_MB".

#include "LargeIdml.h"

#include "links/QNIDMLLinksProcessor.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

namespace {

// Generated once per run, or once for good in the folder named by QUILLON_BENCH_DOC (writing
// 10,000 files takes far longer than reading them).
const quillon::bench::LargeIdml& largeDocument()
{
    static QTemporaryDir temporary;
    static const quillon::bench::LargeIdml doc = [] {
        const QString kept = qEnvironmentVariable("QUILLON_BENCH_DOC");
        const QString root = kept.isEmpty() ? temporary.path() : kept;
        const QString done = root + QStringLiteral("/.complete");
        if (!kept.isEmpty() && QFile::exists(done))
            return quillon::bench::describeLargeIdml(root);
        QDir().mkpath(root);
        const auto written = quillon::bench::writeLargeIdml(root);
        QFile(done).open(QIODevice::WriteOnly);
        return written;
    }();
    return doc;
}

double maxRssMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void BM_AnalyseLargeDocument(benchmark::State& state)
{
    const auto& doc = largeDocument();
    QTemporaryDir dataFolder;
    quillon::links::LinksController controller;
    controller.dataFileFolder = dataFolder.path();
    controller.numberOfLinksInDoc = doc.links;
    controller.fileThreads = static_cast<int>(state.range(0));
    qsizetype records = 0;
    for (auto _ : state) {
        quillon::links::QNIDMLLinksProcessor processor(controller);
        records = processor.processLinksInIDMLFolder(doc.packageFolder, doc.documentPath).size();
        benchmark::DoNotOptimize(records);
    }
    state.counters["records"] = static_cast<double>(records);
    state.counters["maxRSS_MB"] = maxRssMegabytes();
}
BENCHMARK(BM_AnalyseLargeDocument)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    largeDocument();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
