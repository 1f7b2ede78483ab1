// Packaging the generated 1,000-spread document with its 10,000-odd linked files: the package
// run (links through the copy queue, the document, no relinking) against `cp -a` of the same
// links folder on the same disk. The batch preflight before it runs once, untimed.
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

#include <iostream>

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

void packageRun(benchmark::State& state)
{
    Fixture& f = fixture();
    const QString base = f.dir.filePath(QStringLiteral("packages"));
    package::PackageRequest request{f.host};
    request.documents = f.batch.preflightDataOfProcessedDocs().values();
    request.linksWithoutDuplicates = f.batch.linksWithoutDuplicates();
    request.sizeOfLinksWithoutDuplicates = f.batch.sizeOfLinksWithoutDuplicates();
    request.choices.basePackageFolderPath = base;
    request.choices.relinkToPackagedLinks = false;
    request.choices.writeManifest = state.range(0) != 0; // 1: the links hashed as they are copied
    request.stagingFolder = f.dir.filePath(QStringLiteral("staging"));
    for (auto _ : state) {
        state.PauseTiming();
        QDir(base).removeRecursively();
        QDir().mkpath(base);
        state.ResumeTiming();
        package::QNPackageController controller;
        const package::PackageOutcome outcome = controller.packageDocuments(request, {f.alerts, nullptr, {}});
        if (outcome.ended != package::PackageEnding::Completed || outcome.linksCopied == 0)
            state.SkipWithError("the package was not made");
    }
    state.SetBytesProcessed(state.iterations() * f.linkBytes);
}

void linksWithCp(benchmark::State& state)
{
    Fixture& f = fixture();
    const QString target = f.dir.filePath(QStringLiteral("cp-links"));
    for (auto _ : state) {
        state.PauseTiming();
        QDir(target).removeRecursively();
        state.ResumeTiming();
        QProcess cp;
        cp.start(QStringLiteral("cp"), {QStringLiteral("-a"), f.links, target});
        if (!cp.waitForFinished(-1) || cp.exitCode() != 0)
            state.SkipWithError("cp failed");
    }
    state.SetBytesProcessed(state.iterations() * f.linkBytes);
}

BENCHMARK(packageRun)->Arg(0)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(linksWithCp)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    return quillon::bench::runBenchmarks(argc, argv, [] { fixture(); });
}
