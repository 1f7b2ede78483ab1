#pragma once

#include "package/FileCopyOperation.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace quillon::package {

// A queue of copies, taken in the order queued, on a thread of its own. The copy queue is one of
// the few places allowed a thread: copies must not hold up the packaging steps or the window.
// A long queue is shared with the program's fan-out, so that thousands of small files, whose cost
// is the file system's work for each, are copied several at once; the delegate still hears the
// starts and the ends in queue order, one call at a time, and a short queue is copied one file
// at a time, its calls alternating as a serial queue's would.
// A new manager is made for every copy phase.
class FileCopyManager {
public:
    // Told the number of operations not yet finished (the running one included) whenever it
    // changes: on the adding thread after an add, on the copy thread after a copy.
    // It must not add to this manager (a next phase makes a manager of its own).
    using OperationCountObserver = std::function<void(int operationCount)>;

    explicit FileCopyManager(OperationCountObserver observer = {});
    // Cancels what is left and waits for the copy thread.
    ~FileCopyManager();
    FileCopyManager(const FileCopyManager&) = delete;
    FileCopyManager& operator=(const FileCopyManager&) = delete;

    // The selector's spelling is kept.
    void addOPeration(std::shared_ptr<FileCopyOperation> operation);
    // Queues many at once, in order: one wake for the lot instead of one for each.
    void addOperations(const std::vector<std::shared_ptr<FileCopyOperation>>& operations);
    int operationCount() const;
    void waitUntilAllOperationsAreFinished();
    // The same for at most `timeout`; true when all are finished.
    bool waitUntilAllOperationsAreFinishedFor(std::chrono::milliseconds timeout);
    // The running copy stops within a chunk and removes its partial file; the queued ones fail
    // without copying.
    void cancelAllOperations();

private:
    void run();
    // Takes the next operation in queue order, starts and copies it, then tells the ends of the
    // operations at the front that are done.
    void copyNext();
    void tellFinishedInOrder();
    void notify();

    OperationCountObserver m_observer;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<FileCopyOperation>> m_queue; // not yet told finished, in order
    size_t m_taken = 0;                                     // the first m_taken are running or done
    bool m_stopping = false;
    // Orders the delegate's calls and the observer's counts: they arrive in the order they happened.
    std::mutex m_tellMutex;
    std::thread m_thread;
};

} // namespace quillon::package
