#include "app/Operations.h"

#include <algorithm>

namespace quillon::app {

Operation::Operation(QString name, std::function<void()> work) : m_name(std::move(name)), m_work(std::move(work)) {}

void Operation::addDependency(Operation* other)
{
    if (other && other != this && std::find(m_dependencies.begin(), m_dependencies.end(), other) == m_dependencies.end())
        m_dependencies.push_back(other);
}

void Operation::run()
{
    if (!m_cancelled && m_work)
        m_work();
    m_finished = true;
}

void setOrderOfOperations(const std::vector<Operation*>& operations)
{
    for (size_t i = 1; i < operations.size(); ++i)
        operations[i]->addDependency(operations[i - 1]);
}

OperationQueue::~OperationQueue()
{
    cancelAllOperations();
    waitUntilAllOperationsAreFinished();
}

void OperationQueue::addOperations(std::vector<std::shared_ptr<Operation>> operations)
{
    std::lock_guard lock(m_mutex);
    for (auto& op : operations)
        m_pending.push_back(std::move(op));
    if (m_running)
        return;
    if (m_worker.joinable())
        m_worker.join();
    m_running = true;
    m_worker = std::thread([this] { workerLoop(); });
}

void OperationQueue::cancelAllOperations()
{
    std::lock_guard lock(m_mutex);
    for (auto& op : m_pending)
        op->cancel();
}

void OperationQueue::waitUntilAllOperationsAreFinished()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return !m_running; });
    if (m_worker.joinable() && m_worker.get_id() != std::this_thread::get_id()) {
        std::thread worker = std::move(m_worker);
        lock.unlock();
        worker.join();
    }
}

bool OperationQueue::isRunning() const
{
    std::lock_guard lock(m_mutex);
    return m_running;
}

std::shared_ptr<Operation> OperationQueue::takeReadyOperation()
{
    auto ready = std::find_if(m_pending.begin(), m_pending.end(), [](const std::shared_ptr<Operation>& op) {
        const auto& deps = op->dependencies();
        return std::all_of(deps.begin(), deps.end(), [](const Operation* d) { return d->isFinished(); });
    });
    // Dependencies outside this queue that never finish would stall it: run the first in order.
    if (ready == m_pending.end())
        ready = m_pending.begin();
    std::shared_ptr<Operation> op = *ready;
    m_pending.erase(ready);
    return op;
}

void OperationQueue::workerLoop()
{
    for (;;) {
        std::shared_ptr<Operation> op;
        {
            std::lock_guard lock(m_mutex);
            if (m_pending.empty()) {
                // Waiting operations point at those they wait for: the ones that ran are kept
                // until nothing waits any more.
                m_ran.clear();
                m_running = false;
                m_idle.notify_all();
                return;
            }
            op = takeReadyOperation();
        }
        op->run();
        std::lock_guard lock(m_mutex);
        m_ran.push_back(std::move(op));
    }
}

} // namespace quillon::app
