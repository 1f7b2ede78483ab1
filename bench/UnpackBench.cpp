// Unpacking a large IDML in process, against the system's unzip on the same file.
#include "IdmlGenerator.h"

#include "host/OfflineIdmlHost.h"
#include "idml/IdmlArchive.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <iostream>

namespace {

using namespace quillon;
using namespace quillon::idml;
using namespace quillon::host;

struct Fixture {
    QTemporaryDir dir;
    QString idml;
    bench::GeneratedIdml facts;

    Fixture()
    {
        idml = dir.filePath(QStringLiteral("Catalogue.idml"));
        facts = bench::writeGeneratedIdml(idml, bench::IdmlShape{});
        std::cerr << "generated: " << facts.entries << " entries, " << facts.xmlBytes / 1e6 << " MB of XML, "
                  << facts.archiveBytes / 1e6 << " MB archive\n";
    }
};

Fixture& fixture()
{
    static Fixture instance;
    return instance;
}

void unpackInProcess(benchmark::State& state)
{
    const QString out = fixture().dir.filePath(QStringLiteral("ours"));
    for (auto _ : state) {
        state.PauseTiming();
        QDir(out).removeRecursively();
        state.ResumeTiming();
        auto archive = idml::IdmlArchive::open(fixture().idml);
        if (!archive || !archive->extractTo(out))
            state.SkipWithError("unpacking failed");
    }
    state.SetBytesProcessed(state.iterations() * fixture().facts.xmlBytes);
}

void unpackWithUnzipTool(benchmark::State& state)
{
    const QString out = fixture().dir.filePath(QStringLiteral("theirs"));
    for (auto _ : state) {
        state.PauseTiming();
        QDir(out).removeRecursively();
        state.ResumeTiming();
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), {QStringLiteral("-q"), fixture().idml, QStringLiteral("-d"), out});
        if (!unzip.waitForFinished(-1) || unzip.exitCode() != 0)
            state.SkipWithError("unzip failed");
    }
    state.SetBytesProcessed(state.iterations() * fixture().facts.xmlBytes);
}

// The offline host's document record reads every spread and story from the archive.
void offlineDocumentRecord(benchmark::State& state)
{
    for (auto _ : state) {
        auto record = host::idmlDocumentRecord(fixture().idml);
        if (!record)
            state.SkipWithError("record failed");
        benchmark::DoNotOptimize(record);
    }
    state.SetBytesProcessed(state.iterations() * fixture().facts.xmlBytes);
}

BENCHMARK(unpackInProcess)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(unpackWithUnzipTool)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(offlineDocumentRecord)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    return quillon::bench::runBenchmarks(argc, argv);
}
