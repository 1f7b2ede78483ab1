#pragma once

#include <QtGlobal>

#include <functional>

namespace quillon::results {

// Runs `work(begin, end)` over 0...count split into one range per core, on worker threads and
// the calling one, and returns when all are done. Short lists run on the calling thread alone.
// The ranges must be independent of one another.
void runInParallel(qsizetype count, const std::function<void(qsizetype begin, qsizetype end)>& work);

} // namespace quillon::results
