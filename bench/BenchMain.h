#pragma once

#include <functional>

namespace quillon::bench {

// The main() of every benchmark program: a QCoreApplication (settings, paths and threads need
// one), then the registered benchmarks. `prepare` runs once before them, so that building a large
// document is not timed as part of the first benchmark.
int runBenchmarks(int argc, char** argv, const std::function<void()>& prepare = {});

} // namespace quillon::bench
