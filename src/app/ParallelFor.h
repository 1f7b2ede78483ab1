#pragma once

#include <QtGlobal>

#include <algorithm>
#include <functional>
#include <vector>

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

// Makes `count` items a batch at a time, the items of a batch side by side, and hands them to
// `take` in order: a long list written as text is never held whole. `make(index, item)` fills a
// default-made Item; `take(index, item)` returning false stops it, and then it returns false.
template <typename Item, typename Make, typename Take> bool inOrderedBatches(qsizetype count, Make&& make, Take&& take)
{
    constexpr qsizetype kBatch = 1024;
    std::vector<Item> batch;
    for (qsizetype begin = 0; begin < count; begin += kBatch) {
        batch.assign(static_cast<size_t>(std::min(kBatch, count - begin)), Item());
        parallelFor(static_cast<qsizetype>(batch.size()), {.itemsPerThread = 64},
                    [&](int, qsizetype index) { make(begin + index, batch[static_cast<size_t>(index)]); });
        for (size_t index = 0; index < batch.size(); ++index)
            if (!take(begin + static_cast<qsizetype>(index), batch[index]))
                return false;
    }
    return true;
}

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
