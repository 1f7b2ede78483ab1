#include "package/FileCopyManager.h"

namespace quillon::package {

FileCopyManager::FileCopyManager(OperationCountObserver observer)
    : m_observer(std::move(observer)), m_thread([this] { run(); })
{
}

FileCopyManager::~FileCopyManager()
{
    cancelAllOperations();
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void FileCopyManager::addOPeration(std::shared_ptr<FileCopyOperation> operation)
{
    {
        std::lock_guard lock(m_mutex);
        m_queue.push_back(std::move(operation));
    }
    m_changed.notify_all();
    notify();
}

int FileCopyManager::operationCount() const
{
    std::lock_guard lock(m_mutex);
    return static_cast<int>(m_queue.size());
}

void FileCopyManager::waitUntilAllOperationsAreFinished()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_queue.empty(); });
}

bool FileCopyManager::waitUntilAllOperationsAreFinishedFor(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [this] { return m_queue.empty(); });
}

void FileCopyManager::cancelAllOperations()
{
    std::lock_guard lock(m_mutex);
    for (const auto& operation : m_queue)
        operation->cancel();
}

void FileCopyManager::run()
{
    while (true) {
        std::shared_ptr<FileCopyOperation> operation;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_stopping || !m_queue.empty(); });
            if (m_queue.empty())
                return;
            operation = m_queue.front();
        }
        operation->main();
        {
            std::lock_guard lock(m_mutex);
            m_queue.pop_front();
        }
        m_changed.notify_all();
        notify();
    }
}

void FileCopyManager::notify()
{
    std::lock_guard serial(m_notifyMutex);
    if (m_observer)
        m_observer(operationCount());
}

} // namespace quillon::package
