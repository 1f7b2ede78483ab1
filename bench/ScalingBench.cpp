// `quillon preflight` as a user runs it on documents that grow in one direction: links (whose
// files are on disk), swatches, fonts, and one story as large as a part may be. Each benchmark
// runs the command on a document of one size; comparing the sizes shows whether the cost grows
// linearly. Reported per run: the wall time ("manual time") and the command's own peak memory
// ("maxRSS_MB", from wait4, so not mixed with this process).
//
// The documents are written on first use (the 200,000-link one takes about a minute and 1.3 GB
// of disk for its parts plus 200,000 small files); run one family with --benchmark_filter.
#include "IdmlGenerator.h"

#include <QDir>
#include <QElapsedTimer>
#include <QHash>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <iostream>
#include <memory>
#include <vector>

extern char** environ;

namespace {

using namespace quillon;

QTemporaryDir& scratch()
{
    static QTemporaryDir dir;
    return dir;
}

// The document of a shape, written once per name.
QString document(const QString& name, const bench::IdmlShape& shape)
{
    static QHash<QString, QString> written;
    if (const auto it = written.constFind(name); it != written.cend())
        return *it;
    const QString folder = scratch().filePath(name);
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(QStringLiteral("Document.idml"));
    const bench::GeneratedIdml facts = bench::writeGeneratedIdml(path, shape);
    std::cerr << name.toStdString() << ": " << facts.entries << " parts, " << facts.xmlBytes / 1e6 << " MB of XML, "
              << facts.linkedFiles << " linked files\n";
    written.insert(name, facts.entries > 0 ? path : QString());
    return written.value(name);
}

struct CommandRun {
    bool ok = false;
    double seconds = 0;
    double maxRssMegabytes = 0;
};

// Runs the command with its output thrown away and waits for it alone.
CommandRun runCommand(const std::vector<std::string>& arguments)
{
    std::vector<char*> argv{const_cast<char*>(QUILLON_CLI_PATH)};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    QElapsedTimer timer;
    timer.start();
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, QUILLON_CLI_PATH, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    CommandRun run;
    if (spawned != 0)
        return run;
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) != pid)
        return run;
    run.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    run.maxRssMegabytes = static_cast<double>(usage.ru_maxrss) / 1024.0;
    // 0 no alert, 1 alerts or warnings: both are a completed preflight.
    run.ok = WIFEXITED(status) && WEXITSTATUS(status) <= 1;
    return run;
}

void preflight(benchmark::State& state, const QString& path, const char* format)
{
    if (path.isEmpty()) {
        state.SkipWithError("the document could not be written");
        return;
    }
    CommandRun run;
    for (auto _ : state) {
        run = runCommand({"preflight", "--format", format, path.toStdString()});
        if (!run.ok) {
            state.SkipWithError("the command failed");
            break;
        }
        state.SetIterationTime(run.seconds);
    }
    state.counters["maxRSS_MB"] = run.maxRssMegabytes;
}

const char* formatOf(benchmark::State& state)
{
    return state.range(1) == 0 ? "json" : "summary";
}

// Spreads of ten placed images each, every linked file on disk.
void links(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    bench::IdmlShape shape;
    shape.spreads = count / 10;
    shape.linksPerSpread = 10;
    shape.linkedFilesFolder = scratch().filePath(QStringLiteral("links%1/Links").arg(count));
    preflight(state, document(QStringLiteral("links%1").arg(count), shape), formatOf(state));
    state.counters["links"] = count;
}

// Twenty spreads with styled text, so that the parts themselves cost little.
bench::IdmlShape smallStyledShape()
{
    bench::IdmlShape shape;
    shape.spreads = 20;
    shape.linksPerSpread = 2;
    shape.paragraphsPerStory = 10;
    shape.paragraphStyles = 40;
    shape.characterStyles = 15;
    return shape;
}

// Swatches in the swatch part; the frames and styles use some of them.
void swatches(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    bench::IdmlShape shape = smallStyledShape();
    shape.swatches = count;
    preflight(state, document(QStringLiteral("swatches%1").arg(count), shape), formatOf(state));
    state.counters["swatches"] = count;
}

// Fonts in the font part, each a family of its own.
void fonts(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    bench::IdmlShape shape = smallStyledShape();
    shape.extraFonts = count;
    preflight(state, document(QStringLiteral("fonts%1").arg(count), shape), formatOf(state));
    state.counters["fonts"] = count;
}

// One story just under the size a part may have (64 MB).
void largeStory(benchmark::State& state)
{
    bench::IdmlShape shape;
    shape.spreads = 1;
    shape.linksPerSpread = 1;
    shape.paragraphsPerStory = 95000; // about 61 MB
    shape.paragraphStyles = 40;
    shape.characterStyles = 15;
    shape.swatches = 60;
    preflight(state, document(QStringLiteral("story"), shape), formatOf(state));
}

// Arguments: the count, then 0 for JSON or 1 for the summary.
BENCHMARK(links)
    ->ArgsProduct({{50000, 100000, 200000}, {0, 1}})
    ->Unit(benchmark::kSecond)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK(swatches)->ArgsProduct({{20000, 200000}, {0, 1}})->Unit(benchmark::kSecond)->UseManualTime()->Iterations(1);
BENCHMARK(fonts)->ArgsProduct({{2000, 20000}, {0, 1}})->Unit(benchmark::kSecond)->UseManualTime()->Iterations(1);
BENCHMARK(largeStory)->ArgsProduct({{0}, {0, 1}})->Unit(benchmark::kSecond)->UseManualTime()->Iterations(1);

} // namespace

int main(int argc, char** argv)
{
    // The commands keep their presets and settings apart from the user's.
    qputenv("QUILLON_SUPPORT_DIR", scratch().filePath(QStringLiteral("support")).toLocal8Bit());
    return quillon::bench::runBenchmarks(argc, argv);
}
