// Packaging the generated 1,000-spread document with its 10,000-odd linked files: the package
// run (links through the copy queue, the document, no relinking), without and with the manifest,
// against `cp -a` of the same links folder on the same disk. The batch preflight before it runs
// once, untimed.
#include "IdmlGenerator.h"

#include "app/Alerts.h"
#include "app/Progress.h"
#include "host/OfflineIdmlHost.h"
#include "package/PackageController.h"
#include "package/PreflightToPackageController.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace quillon;

struct Fixture {
    QTemporaryDir dir{QCoreApplication::applicationDirPath() + QStringLiteral("/packagebench-XXXXXX")};
    QString document = dir.filePath(QStringLiteral("large/Catalogue.idml"));
    QString links = dir.filePath(QStringLiteral("large/Links"));
    host::OfflineIdmlHost host;
    app::ScriptedAlertSink alerts;
    app::NullProgressSink bar;
    package::QNPreflightToPackageController batch{host, alerts, bar};
    qint64 linkBytes = 0;

    Fixture()
    {
        QDir().mkpath(links);
        bench::IdmlShape shape;
        shape.linksPerSpread = 10;
        shape.linkedFilesFolder = links;
        shape.linkedFileBytes = 27'294; // 273 MB over the 10,002 files, as a real job's previews
        const bench::GeneratedIdml written = bench::writeGeneratedIdml(document, shape);
        QDirIterator it(links, QDir::Files);
        while (it.hasNext()) {
            it.next();
            linkBytes += it.fileInfo().size();
        }
        batch.preflightForPackaging({package::TNFileItem::fileItemWithPath(document)}, package::PackageMode::Unified,
                                    {.workFolder = dir.filePath(QStringLiteral("work"))});
        std::cerr << written.linkedFiles << " linked files, " << linkBytes / 1e6 << " MB; "
                  << batch.linksWithoutDuplicates().size() << " links to package\n";
    }
};

Fixture& fixture()
{
    static Fixture instance;
    return instance;
}

// Wall and processor time (user + system, every thread or the waited-for children) of one run.
struct Timing {
    double wallMs = 0;
    double cpuMs = 0;
};

double cpuMsOf(int who)
{
    rusage usage{};
    ::getrusage(who, &usage);
    const auto ms = [](const timeval& t) { return double(t.tv_sec) * 1e3 + double(t.tv_usec) / 1e3; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

template <typename Run> Timing timed(int who, Run&& run)
{
    const double cpuBefore = cpuMsOf(who);
    const auto start = std::chrono::steady_clock::now();
    run();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), cpuMsOf(who) - cpuBefore};
}

// The package and `cp -a` find the same state: their own target removed, the removal written out
// (so that no run pays for the writeback of the one before) and the sources in the cache. The
// file system may skip the inodes of files deleted in the last half minute when it creates
// files, and both pay for that alike.
QString emptied(const QString& folder)
{
    QDir(folder).removeRecursively();
    ::sync();
    return folder;
}

// Every round times `cp -a`, the package without the manifest and the package with it, in turn,
// so that a load that comes and goes on the machine falls on all three alike. The figures to
// quote are the best walls and the processor times.
void packageAgainstCp(benchmark::State& state)
{
    Fixture& f = fixture();
    package::PackageRequest request{f.host};
    request.documents = f.batch.preflightDataOfProcessedDocs().values();
    request.linksWithoutDuplicates = f.batch.linksWithoutDuplicates();
    request.sizeOfLinksWithoutDuplicates = f.batch.sizeOfLinksWithoutDuplicates();
    request.choices.relinkToPackagedLinks = false;
    request.stagingFolder = f.dir.filePath(QStringLiteral("staging"));
    // PACKAGE_BENCH_TARGETS names another folder for the copies (a memory file system shows the
    // program's own cost without the disk's): the package and `cp -a` always share it.
    const QTemporaryDir targetDir(qEnvironmentVariable("PACKAGE_BENCH_TARGETS", f.dir.path()) +
                                  QStringLiteral("/targets-XXXXXX"));
    const QDir targets(targetDir.path());
    const auto packaged = [&](bool manifest, const QString& base) {
        QDir().mkpath(base);
        request.choices.basePackageFolderPath = base;
        request.choices.writeManifest = manifest;
        return timed(RUSAGE_SELF, [&] {
            package::QNPackageController controller;
            const package::PackageOutcome outcome = controller.packageDocuments(request, {f.alerts, nullptr, {}});
            if (outcome.ended != package::PackageEnding::Completed || outcome.linksCopied == 0)
                state.SkipWithError("the package was not made");
        });
    };
    std::vector<std::array<Timing, 3>> rounds;
    for (auto _ : state) {
        state.PauseTiming();
        const QString cpTarget = emptied(targets.filePath(QStringLiteral("cp-links")));
        const Timing cp = timed(RUSAGE_CHILDREN, [&] {
            QProcess process;
            process.start(QStringLiteral("cp"), {QStringLiteral("-a"), f.links, cpTarget});
            if (!process.waitForFinished(-1) || process.exitCode() != 0)
                state.SkipWithError("cp failed");
        });
        const Timing plain = packaged(false, emptied(targets.filePath(QStringLiteral("packages"))));
        rounds.push_back({cp, plain, packaged(true, emptied(targets.filePath(QStringLiteral("packages"))))});
        state.ResumeTiming();
    }
    const char* names[] = {"cp", "package", "manifest"};
    for (size_t run = 0; run < 3; ++run) {
        std::vector<double> walls;
        std::vector<double> cpus;
        for (const auto& round : rounds) {
            walls.push_back(round[run].wallMs);
            cpus.push_back(round[run].cpuMs);
        }
        std::sort(walls.begin(), walls.end());
        std::sort(cpus.begin(), cpus.end());
        state.counters[std::string(names[run]) + "_best_ms"] = walls.front();
        state.counters[std::string(names[run]) + "_cpu_ms"] = cpus[cpus.size() / 2];
    }
    std::cerr << "round    cp -a (wall/cpu ms)   package   with manifest\n";
    for (size_t i = 0; i < rounds.size(); ++i) {
        std::cerr << i + 1;
        for (const Timing& t : rounds[i])
            std::cerr << "    " << qRound(t.wallMs) << " / " << qRound(t.cpuMs);
        std::cerr << '\n';
    }
}

BENCHMARK(packageAgainstCp)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return quillon::bench::runBenchmarks(argc, argv, [] { fixture(); });
}
