#include "app/ParallelFor.h"
#include "app/Progress.h"

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace quillon::app;

namespace {

// Restores the process's budget after a test changed it.
struct BudgetGuard {
    int saved = parallelThreadBudget();
    ~BudgetGuard() { setParallelThreadBudget(saved); }
};

void raise(std::atomic<int>& highest, int value)
{
    for (int seen = highest.load(); value > seen && !highest.compare_exchange_weak(seen, value);) {
    }
}

} // namespace

TEST(ParallelFor, EveryIndexRunsOnceOnWorkersWithinTheLimit)
{
    BudgetGuard guard;
    setParallelThreadBudget(8);
    for (const qsizetype count : {qsizetype(0), qsizetype(1), qsizetype(7), qsizetype(5000)}) {
        std::vector<std::atomic<int>> runs(static_cast<size_t>(count));
        std::atomic<int> highestWorker{0};
        ASSERT_TRUE(parallelFor(count, {.maxThreads = 3}, [&](int worker, qsizetype index) {
            runs[static_cast<size_t>(index)].fetch_add(1);
            raise(highestWorker, worker);
        }));
        for (const auto& run : runs)
            ASSERT_EQ(run.load(), 1) << count;
        EXPECT_LE(highestWorker.load(), 2);
    }
    EXPECT_EQ(parallelThreadsInUse(), 0);
}

TEST(ParallelFor, NestedFanOutsShareOneBudget)
{
    BudgetGuard guard;
    setParallelThreadBudget(3);
    std::atomic<int> peak{0};
    ASSERT_TRUE(parallelFor(8, {.maxThreads = 4}, [&](int, qsizetype) {
        parallelFor(50, {.maxThreads = 4}, [&](int, qsizetype) {
            raise(peak, parallelThreadsInUse());
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        });
    }));
    EXPECT_LE(peak.load(), 3);
    EXPECT_EQ(parallelThreadsInUse(), 0);
}

TEST(ParallelFor, AThreadTheSystemRefusesLeavesTheWorkToTheThreadsThere)
{
    BudgetGuard guard;
    setParallelThreadBudget(4);
    // In a child that may start no thread at all: the process limit, which root is not held to
    // and nobody is.
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const rlimit none{0, 0};
        if ((getuid() == 0 && setuid(65534) != 0) || setrlimit(RLIMIT_NPROC, &none) != 0)
            _exit(10);
        std::atomic<int> ran{0};
        std::atomic<int> highestWorker{0};
        const bool done = parallelFor(1000, {.maxThreads = 4}, [&](int worker, qsizetype) {
            ran.fetch_add(1);
            raise(highestWorker, worker);
        });
        _exit(done && ran == 1000 && highestWorker == 0 && parallelThreadsInUse() == 0 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(ParallelFor, CancelStopsTakingItemsAndAFailureIsRethrown)
{
    // Items slow enough that no thread gets through all the others before the stop is seen.
    auto slowly = [] { std::this_thread::sleep_for(std::chrono::microseconds(50)); };
    CancelFlag cancel;
    std::atomic<int> ran{0};
    EXPECT_FALSE(parallelFor(10000, {.maxThreads = 2, .cancel = &cancel}, [&](int, qsizetype index) {
        ran.fetch_add(1);
        if (index == 10)
            cancel.cancel();
        slowly();
    }));
    EXPECT_LT(ran.load(), 10000);

    std::atomic<int> after{0};
    EXPECT_THROW(parallelFor(10000, {.maxThreads = 2},
                             [&](int, qsizetype index) {
                                 if (index == 3)
                                     throw std::runtime_error("bad item");
                                 slowly();
                                 after.fetch_add(1);
                             }),
                 std::runtime_error);
    EXPECT_LT(after.load(), 9999);
    EXPECT_EQ(parallelThreadsInUse(), 0);
}
