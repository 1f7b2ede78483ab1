#pragma once

#include "package/FileCopyOperation.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace quillon::package {

// A serial queue of copies: one file at a time, in the order queued, on a thread of its own.
// The copy queue is one of the few places allowed a thread: copies must not hold up the
// packaging steps or the window, and copying one file at a time keeps the disk streaming.
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
    int operationCount() const;
    void waitUntilAllOperationsAreFinished();
    // The same for at most `timeout`; true when all are finished.
    bool waitUntilAllOperationsAreFinishedFor(std::chrono::milliseconds timeout);
    // The running copy stops within a chunk and removes its partial file; the queued ones fail
    // without copying.
    void cancelAllOperations();

private:
    void run();
    void notify();

    OperationCountObserver m_observer;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<FileCopyOperation>> m_queue; // the front one is running
    bool m_stopping = false;
    // Serialises the observer's calls, so that counts arrive in the order they happened.
    std::mutex m_notifyMutex;
    std::thread m_thread;
};

} // namespace quillon::package
