// Fonts, colours and paragraph styles of the generated 1,000-spread document (with a style sheet,
// a font list and swatches), read from its unpacked IDML as the offline host does.
#include "IdmlGenerator.h"

#include "host/FontColorInspection.h"
#include "idml/IdmlDocument.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <iostream>

namespace {

using namespace quillon;
using namespace quillon::idml;
using namespace quillon::host;

struct Fixture {
    QTemporaryDir dir;
    QString document = dir.filePath(QStringLiteral("Catalogue.idml"));
    bool ready = false;

    explicit Fixture(const bench::IdmlShape& shape)
    {
        const bench::GeneratedIdml facts = bench::writeGeneratedIdml(document, shape);
        ready = facts.entries > 0;
        std::cerr << "generated: " << facts.entries << " entries, " << facts.xmlBytes / 1e6 << " MB of XML\n";
    }

    // The parts as a preflight gets them: read from the archive, parsed when first asked for. A
    // fresh one each time, so that every run parses.
    std::shared_ptr<idml::IdmlDocument> parts() const
    {
        auto opened = idml::IdmlDocument::open(document, dir.path());
        return opened ? *opened : nullptr;
    }
};

Fixture& fixture()
{
    static Fixture instance([] {
        bench::IdmlShape shape;
        shape.paragraphStyles = 40;
        shape.characterStyles = 15;
        shape.swatches = 60;
        return shape;
    }());
    return instance;
}

// A swatch list far longer than any document's: every step must stay linear in it.
Fixture& manySwatches()
{
    static Fixture instance([] {
        bench::IdmlShape shape;
        shape.spreads = 10;
        shape.swatches = 200000;
        return shape;
    }());
    return instance;
}

void fonts(benchmark::State& state)
{
    const Fixture& f = fixture();
    for (auto _ : state)
        if (auto parts = f.parts(); !parts || !host::processFontsFromIdml(*parts, f.document).ok())
            state.SkipWithError("font inspection failed");
}

void colors(benchmark::State& state)
{
    const Fixture& f = fixture();
    for (auto _ : state)
        if (auto parts = f.parts(); !parts || !host::processColorsFromIdml(*parts, QStringLiteral("1")).ok())
            state.SkipWithError("colour inspection failed");
}

void paragraphStyles(benchmark::State& state)
{
    const Fixture& f = fixture();
    for (auto _ : state) {
        auto parts = f.parts();
        auto report = parts ? host::paraReportFromIdml(*parts)
                            : app::Result<inspection::Inspected<QString>>(app::makeError(QStringLiteral("unreadable")));
        if (!report.ok())
            state.SkipWithError("paragraph styles failed");
        benchmark::DoNotOptimize(report);
    }
}

void colorsOf200000Swatches(benchmark::State& state)
{
    const Fixture& f = manySwatches();
    for (auto _ : state)
        if (auto parts = f.parts(); !parts || !host::processColorsFromIdml(*parts, QStringLiteral("1")).ok())
            state.SkipWithError("colour inspection failed");
}

// The three together, as one preflight and its text report ask for them.
void allThree(benchmark::State& state)
{
    const Fixture& f = fixture();
    for (auto _ : state) {
        const auto parts = f.parts();
        const bool ok = parts && host::processFontsFromIdml(*parts, f.document).ok() &&
                        host::processColorsFromIdml(*parts, QStringLiteral("1")).ok() &&
                        host::paraReportFromIdml(*parts).ok();
        if (!ok)
            state.SkipWithError("an inspection failed");
    }
}

} // namespace

BENCHMARK(fonts)->Unit(benchmark::kMillisecond);
BENCHMARK(colors)->Unit(benchmark::kMillisecond);
BENCHMARK(paragraphStyles)->Unit(benchmark::kMillisecond);
BENCHMARK(allThree)->Unit(benchmark::kMillisecond);
BENCHMARK(colorsOf200000Swatches)->Unit(benchmark::kMillisecond)->Iterations(1);

BENCHMARK_MAIN();
