// Copying 300 MB through the copy queue, as 1,000 files and as one file, against `cp -a` of the
// same files on the same disk.
#include "package/FileCopyManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

namespace {

using namespace quillon;

constexpr qint64 kTotalBytes = 300LL * 1000 * 1000;
constexpr int kManyFiles = 1000;

// Both sets lie beside the build, on the disk a package would be written to.
struct Fixture {
    QTemporaryDir dir{QCoreApplication::applicationDirPath() + QStringLiteral("/copybench-XXXXXX")};
    QString many = dir.filePath(QStringLiteral("many"));
    QString one = dir.filePath(QStringLiteral("one"));

    Fixture()
    {
        QDir().mkpath(many);
        QDir().mkpath(one);
        QByteArray block(kTotalBytes / kManyFiles, Qt::Uninitialized);
        for (qsizetype i = 0; i < block.size(); ++i)
            block[i] = static_cast<char>(i * 31 + (i >> 12));
        QFile whole(one + QStringLiteral("/whole.psd"));
        whole.open(QIODevice::WriteOnly);
        for (int i = 0; i < kManyFiles; ++i) {
            block[0] = static_cast<char>(i); // no two files alike
            QFile part(many + QStringLiteral("/link-%1.tif").arg(i));
            part.open(QIODevice::WriteOnly);
            part.write(block);
            whole.write(block);
        }
    }
};

Fixture& fixture()
{
    static Fixture instance;
    return instance;
}

QString setOf(const benchmark::State& state)
{
    return state.range(0) == 1 ? fixture().one : fixture().many;
}

void resetTarget(const QString& target)
{
    QDir(target).removeRecursively();
    QDir().mkpath(target);
}

void copyQueue(benchmark::State& state)
{
    const QString source = setOf(state);
    const QString target = fixture().dir.filePath(QStringLiteral("ours"));
    const QStringList names = QDir(source).entryList(QDir::Files);
    for (auto _ : state) {
        state.PauseTiming();
        resetTarget(target);
        state.ResumeTiming();
        std::vector<std::shared_ptr<package::FileCopyOperation>> operations;
        package::FileCopyManager manager;
        for (const QString& name : names) {
            operations.push_back(
                package::FileCopyOperation::create(source + u'/' + name, target + u'/' + name, nullptr));
            manager.addOPeration(operations.back());
        }
        manager.waitUntilAllOperationsAreFinished();
        for (const auto& operation : operations)
            if (operation->fCopyState() != package::FileCopyState::Finished)
                state.SkipWithError("a copy failed");
    }
    state.SetBytesProcessed(state.iterations() * kTotalBytes);
}

void copyWithCp(benchmark::State& state)
{
    const QString source = setOf(state);
    const QString target = fixture().dir.filePath(QStringLiteral("theirs"));
    for (auto _ : state) {
        state.PauseTiming();
        QDir(target).removeRecursively();
        state.ResumeTiming();
        QProcess cp;
        cp.start(QStringLiteral("cp"), {QStringLiteral("-a"), source, target});
        if (!cp.waitForFinished(-1) || cp.exitCode() != 0)
            state.SkipWithError("cp failed");
    }
    state.SetBytesProcessed(state.iterations() * kTotalBytes);
}

// Argument: 1 copies one file, 1000 the thousand files.
BENCHMARK(copyQueue)->Arg(kManyFiles)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(copyWithCp)->Arg(kManyFiles)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    return quillon::bench::runBenchmarks(argc, argv, [] { fixture(); });
}
