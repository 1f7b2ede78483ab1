// Inspecting 2,000 linked files, a mix of every sample kind (Photoshop, EPS, Illustrator, TIFF,
// JPEG, PNG, PDF), as a links run does it: on one thread and on every core. The files are copies
// in a temporary folder, or the folder named by QUILLON_INSPECT_FILES (bench/inspect_vs_exiftool.sh
// uses that to time the same files as the reference tool).
//
// Also: a whole-file scan of a 2 GiB EPS without its markers, to show that the readers' memory
// stays bounded (the file is sparse, so the disk is not what is measured).
#include "fileinspect/FileFacts.h"
#include "fileinspect/QNPreflightMethods.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

namespace {

using namespace quillon::fileinspect;

constexpr int kFileCount = 2000;

// The shared samples beside the repository this file was built from.
QString samplesFolder()
{
    return QDir::cleanPath(QFileInfo(QStringLiteral(__FILE__)).absolutePath() +
                           QStringLiteral("/../../shared/samples"));
}

// The sample files of every kind the readers know.
QStringList sampleFiles()
{
    QStringList files;
    for (const char* folder : {"psd", "eps", "ai", "tiff", "jpeg", "other"})
        for (const QFileInfo& file : QDir(samplesFolder() + u'/' + QLatin1String(folder)).entryInfoList(QDir::Files))
            files << file.filePath();
    return files;
}

// kFileCount copies of the samples in turn, in `folder`.
QStringList copiedFiles(const QString& folder)
{
    const QStringList samples = sampleFiles();
    QStringList files;
    for (int i = 0; i < kFileCount && !samples.isEmpty(); ++i) {
        const QFileInfo sample(samples[i % samples.size()]);
        const QString copy = QStringLiteral("%1/%2_%3").arg(folder).arg(i, 4, 10, QChar(u'0')).arg(sample.fileName());
        if (QFile::exists(copy) || QFile::copy(sample.filePath(), copy))
            files << copy;
    }
    return files;
}

QStringList benchFiles()
{
    static QTemporaryDir temporary;
    static const QStringList files = [] {
        const QString given = qEnvironmentVariable("QUILLON_INSPECT_FILES");
        if (given.isEmpty())
            return copiedFiles(temporary.path());
        QStringList list;
        for (const QFileInfo& file : QDir(given).entryInfoList(QDir::Files, QDir::Name))
            list << file.filePath();
        return list;
    }();
    return files;
}

void BM_InspectLinkedFiles(benchmark::State& state)
{
    const QStringList files = benchFiles();
    if (files.isEmpty()) {
        state.SkipWithError("no sample files");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(inspectFiles(files, int(state.range(0))));
    state.counters["files"] = double(files.size());
    state.counters["files/s"] = benchmark::Counter(double(files.size()), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_InspectLinkedFiles)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

long peakResidentKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// An Illustrator 17 EPS head, then 2 GiB of nothing: the colour mode and the embedded fonts are
// both looked for through the whole file.
void BM_LargeEpsWithoutMarkers(benchmark::State& state)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("large.eps"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            state.SkipWithError("cannot write the large file");
            return;
        }
        file.write("%!PS-Adobe-3.1 EPSF-3.0\r%%Creator: Adobe Illustrator(R) 17.0\r%%DocumentFonts: \r%%EndComments\r");
        file.resize(qint64(2) << 30);
    }
    const long before = peakResidentKilobytes();
    for (auto _ : state) {
        QNPreflightMethods reader;
        const QString head = reader.readFileAtPath(path, 1500);
        benchmark::DoNotOptimize(reader.readEPS1500AtPath(path, head));
    }
    state.counters["GiB/s"] = benchmark::Counter(2.0 * double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["peak RSS growth MiB"] = double(peakResidentKilobytes() - before) / 1024.0;
}
BENCHMARK(BM_LargeEpsWithoutMarkers)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(2);

} // namespace

BENCHMARK_MAIN();
