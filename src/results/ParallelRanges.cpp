#include "results/ParallelRanges.h"

#include "app/Log.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

namespace quillon::results {

namespace {

// Below this many items a thread costs more than it saves.
constexpr qsizetype kItemsPerThread = 2000;

} // namespace

void runInParallel(qsizetype count, const std::function<void(qsizetype begin, qsizetype end)>& work)
{
    const qsizetype cores = std::max(1u, std::thread::hardware_concurrency());
    const qsizetype parts = std::clamp<qsizetype>(count / kItemsPerThread, 1, cores);
    const qsizetype step = (count + parts - 1) / std::max<qsizetype>(parts, 1);
    std::vector<std::thread> threads;
    qsizetype begin = step;
    try {
        for (; begin < count; begin += step)
            threads.emplace_back(work, begin, std::min(count, begin + step));
    } catch (const std::system_error& e) {
        // No thread to be had: the rest runs here.
        app::logFailure(QStringLiteral("start a worker thread: %1").arg(QString::fromLocal8Bit(e.what())));
        work(begin, count);
    }
    work(0, std::min(count, step));
    for (std::thread& t : threads)
        t.join();
}

} // namespace quillon::results
