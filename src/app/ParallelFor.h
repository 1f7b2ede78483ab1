#pragma once

#include <QtGlobal>

#include <functional>

namespace quillon::app {

class CancelFlag;

// How a fan-out may spread.
struct ParallelOptions {
    int maxThreads = 0;                 // threads working at once, the caller's included; 0: one per core
    qsizetype itemsPerThread = 1;       // below this many items per thread another thread costs more than it saves
    const CancelFlag* cancel = nullptr; // checked before each item: a cancelled run takes no new item
};

// The one fan-out of the program. Runs `work(worker, index)` once for every index in [0, count),
// taking indexes in order from a shared counter, on the calling thread (worker 0) and on up to
// `maxThreads - 1` threads of its own (workers 1 and up, so a caller may keep state per worker
// in an array of `maxThreads` slots). Extra threads come out of one budget for the whole process
// (setParallelThreadBudget), so nested fan-outs never start more threads than it allows; when
// the budget is spent, or the system refuses a thread, the work runs on the threads it has.
// An exception thrown by `work` stops the others taking new items and is rethrown here after
// every thread has ended. Returns false when cancelled before every item was done.
bool parallelFor(qsizetype count, const ParallelOptions& options,
                 const std::function<void(int worker, qsizetype index)>& work);

// The processor cores of the machine, at least 1.
int coreCount();

// The most threads a fan-out asking for `maxThreads` (0: one per core) would use.
int parallelThreadLimit(int maxThreads);

// The most extra threads all fan-outs together may run at once; by default one fewer than the
// cores. The command line sets it from --jobs so that N documents never run on more than N times
// the cores.
void setParallelThreadBudget(int extraThreads);
int parallelThreadBudget();
// Extra threads running now (for tests).
int parallelThreadsInUse();

} // namespace quillon::app
