#pragma once

#include <QString>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace quillon::app {

// A named piece of work that may wait for others. An operation runs once; a cancelled one that
// has not started is skipped but still counts as finished, so those waiting for it go on (each
// stage checks the cancel flag itself and decides what to do).
class Operation {
public:
    Operation(QString name, std::function<void()> work);

    const QString& name() const { return m_name; }
    void addDependency(Operation* other);
    const std::vector<Operation*>& dependencies() const { return m_dependencies; }

    void cancel() { m_cancelled = true; }
    bool isCancelled() const { return m_cancelled; }
    bool isFinished() const { return m_finished; }

    // Runs the work unless cancelled; marks the operation finished either way.
    void run();

private:
    QString m_name;
    std::function<void()> m_work;
    std::vector<Operation*> m_dependencies;
    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_finished{false};
};

// Makes each operation depend on the one before it. Fewer than two operations: nothing.
// The operations are not queued here.
void setOrderOfOperations(const std::vector<Operation*>& operations);

// Runs operations one at a time on a worker thread of its own, each as soon as its dependencies
// have finished, in the order they were added among those that are ready.
class OperationQueue {
public:
    OperationQueue() = default;
    ~OperationQueue();
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;

    // Takes the operations and starts the worker when it is not running.
    void addOperations(std::vector<std::shared_ptr<Operation>> operations);
    void cancelAllOperations();
    void waitUntilAllOperationsAreFinished();
    bool isRunning() const;

private:
    void workerLoop();
    std::shared_ptr<Operation> takeReadyOperation();

    mutable std::mutex m_mutex;
    std::condition_variable m_idle;
    std::vector<std::shared_ptr<Operation>> m_pending;
    std::vector<std::shared_ptr<Operation>> m_ran;
    std::thread m_worker;
    bool m_running = false;
};

} // namespace quillon::app
