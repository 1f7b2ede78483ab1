// Fonts, colours and paragraph styles of a generated 1,000-spread document, read from its
// unpacked IDML as the offline host does.
#include "FontColorBenchDocument.h"

#include "preflight/FontColorInspection.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace quillon;

constexpr int kSpreads = 1000;

struct BenchDocument {
    QTemporaryDir dir;
    QString package = dir.filePath(QStringLiteral("package"));
    QString document = dir.filePath(QStringLiteral("Bench.indd"));
    QString data = dir.filePath(QStringLiteral("data"));
    BenchDocument() { bench::writeFontColorBenchDocument(package, kSpreads); }
};

const BenchDocument& benchDocument()
{
    static const BenchDocument document;
    return document;
}

void fonts(benchmark::State& state)
{
    const BenchDocument& doc = benchDocument();
    for (auto _ : state)
        if (!preflight::processFontsFromIdml(doc.package, doc.document, doc.data).ok())
            state.SkipWithError("font inspection failed");
}

void colors(benchmark::State& state)
{
    const BenchDocument& doc = benchDocument();
    for (auto _ : state)
        if (!preflight::processColorsFromIdml(doc.package, doc.document, doc.data, QStringLiteral("1")).ok())
            state.SkipWithError("colour inspection failed");
}

void paragraphStyles(benchmark::State& state)
{
    const BenchDocument& doc = benchDocument();
    for (auto _ : state) {
        auto report = preflight::paraReportFromIdml(doc.package);
        if (!report.ok())
            state.SkipWithError("paragraph styles failed");
        benchmark::DoNotOptimize(report);
    }
}

// The three together, as one preflight and its text report ask for them.
void allThree(benchmark::State& state)
{
    const BenchDocument& doc = benchDocument();
    for (auto _ : state) {
        const bool ok =
            preflight::processFontsFromIdml(doc.package, doc.document, doc.data).ok() &&
            preflight::processColorsFromIdml(doc.package, doc.document, doc.data, QStringLiteral("1")).ok() &&
            preflight::paraReportFromIdml(doc.package).ok();
        if (!ok)
            state.SkipWithError("an inspection failed");
    }
}

} // namespace

BENCHMARK(fonts)->Unit(benchmark::kMillisecond);
BENCHMARK(colors)->Unit(benchmark::kMillisecond);
BENCHMARK(paragraphStyles)->Unit(benchmark::kMillisecond);
BENCHMARK(allThree)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
