#include "app/ParallelFor.h"

#include "app/Log.h"
#include "app/Progress.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace quillon::app {

int coreCount()
{
    // Asked once: the system reads it from a file each time, and fan-outs ask often.
    static const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    return cores;
}

namespace {

std::atomic<int> g_budget{coreCount() - 1};
std::atomic<int> g_inUse{0};

// Takes one thread out of the budget, or none when it is spent.
bool takeThread()
{
    int used = g_inUse.load();
    while (used < g_budget.load())
        if (g_inUse.compare_exchange_weak(used, used + 1))
            return true;
    return false;
}

void returnThread()
{
    g_inUse.fetch_sub(1);
}

} // namespace

int parallelThreadLimit(int maxThreads)
{
    return std::max(1, maxThreads > 0 ? maxThreads : coreCount());
}

void setParallelThreadBudget(int extraThreads)
{
    g_budget.store(std::max(0, extraThreads));
}

int parallelThreadBudget()
{
    return g_budget.load();
}

int parallelThreadsInUse()
{
    return g_inUse.load();
}

bool parallelFor(qsizetype count, const ParallelOptions& options,
                 const std::function<void(int worker, qsizetype index)>& work)
{
    if (count <= 0)
        return true;
    std::atomic<qsizetype> next{0};
    std::atomic<qsizetype> done{0};
    std::atomic<bool> stop{false};
    std::exception_ptr failure;
    std::mutex failureMutex;
    auto run = [&](int worker) {
        try {
            while (!stop.load(std::memory_order_relaxed)) {
                if (options.cancel && options.cancel->isCancelled())
                    return;
                const qsizetype index = next.fetch_add(1, std::memory_order_relaxed);
                if (index >= count)
                    return;
                work(worker, index);
                done.fetch_add(1, std::memory_order_relaxed);
            }
        } catch (...) {
            const std::lock_guard lock(failureMutex);
            if (!failure)
                failure = std::current_exception();
            stop = true;
        }
    };

    const qsizetype perThread = std::max<qsizetype>(1, options.itemsPerThread);
    const int wanted = static_cast<int>(
        std::min<qsizetype>(parallelThreadLimit(options.maxThreads), std::max<qsizetype>(1, count / perThread)));
    std::vector<std::thread> threads;
    threads.reserve(static_cast<size_t>(wanted - 1));
    for (int worker = 1; worker < wanted && takeThread(); ++worker) {
        try {
            threads.emplace_back(run, worker);
        } catch (const std::system_error& e) {
            returnThread();
            logFailure(QStringLiteral("start a worker thread: %1").arg(QString::fromLocal8Bit(e.what())));
            break;
        }
    }
    run(0);
    // A thread goes back to the budget once it has ended, not while it is still alive.
    for (std::thread& thread : threads) {
        thread.join();
        returnThread();
    }
    if (failure)
        std::rethrow_exception(failure);
    return done.load() == count;
}

} // namespace quillon::app
