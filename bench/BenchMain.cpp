#include "BenchMain.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

namespace quillon::bench {

int runBenchmarks(int argc, char** argv, const std::function<void()>& prepare)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (prepare)
        prepare();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace quillon::bench
