#include "package/FileCopyManager.h"

#include "app/ParallelFor.h"

namespace quillon::package {

namespace {

// Below this many files for each thread another copying thread costs more than it saves.
constexpr qsizetype kFilesPerCopyThread = 16;

} // namespace

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

void FileCopyManager::addOperations(const std::vector<std::shared_ptr<FileCopyOperation>>& operations)
{
    {
        std::lock_guard lock(m_mutex);
        m_queue.insert(m_queue.end(), operations.begin(), operations.end());
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
        qsizetype waiting = 0;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_stopping || m_taken < m_queue.size(); });
            waiting = static_cast<qsizetype>(m_queue.size() - m_taken);
            if (waiting == 0)
                return;
        }
        // Each call takes whichever operation is next, so the starts keep the queue's order
        // whichever thread runs them.
        app::parallelFor(waiting, {.itemsPerThread = kFilesPerCopyThread}, [this](int, qsizetype) { copyNext(); });
    }
}

void FileCopyManager::copyNext()
{
    std::shared_ptr<FileCopyOperation> operation;
    bool started = false;
    {
        std::lock_guard tell(m_tellMutex);
        {
            std::lock_guard lock(m_mutex);
            operation = m_queue.at(m_taken++);
        }
        started = operation->start();
    }
    if (started)
        operation->copy();
    tellFinishedInOrder();
}

void FileCopyManager::tellFinishedInOrder()
{
    std::lock_guard tell(m_tellMutex);
    while (true) {
        std::shared_ptr<FileCopyOperation> front;
        {
            std::lock_guard lock(m_mutex);
            if (m_taken == 0 || !m_queue.front()->isDone())
                break;
            front = m_queue.front();
        }
        front->tellFinished();
        bool empty = false;
        {
            std::lock_guard lock(m_mutex);
            m_queue.pop_front();
            --m_taken;
            empty = m_queue.empty();
        }
        // Only the waiters for the end need waking; a wake for every file would cost a thread
        // switch each.
        if (empty)
            m_changed.notify_all();
        if (m_observer)
            m_observer(operationCount());
    }
}

void FileCopyManager::notify()
{
    std::lock_guard tell(m_tellMutex);
    if (m_observer)
        m_observer(operationCount());
}

} // namespace quillon::package
