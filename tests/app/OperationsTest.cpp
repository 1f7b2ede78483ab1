#include "app/Operations.h"

#include "app/Progress.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

using namespace Qt::StringLiterals;

using namespace quillon::app;

TEST(Operations, QueueRunsInDependencyOrderOffTheCallingThread)
{
    std::mutex m;
    QStringList ran;
    std::thread::id worker;
    auto record = [&](const char* name) {
        return [&, name] {
            std::lock_guard lock(m);
            ran << QLatin1String(name);
            worker = std::this_thread::get_id();
        };
    };
    auto first = std::make_shared<Operation>(u"first"_s, record("first"));
    auto second = std::make_shared<Operation>(u"second"_s, record("second"));
    auto third = std::make_shared<Operation>(u"third"_s, record("third"));
    setOrderOfOperations({first.get(), second.get(), third.get()});
    setOrderOfOperations({first.get(), second.get()}); // a dependency is recorded once
    OperationQueue queue;
    // Added in reverse: the dependencies, not the order of adding, decide.
    queue.addOperations({third, second, first});
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ran, (QStringList{u"first"_s, u"second"_s, u"third"_s}));
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_TRUE(third->isFinished());
}

TEST(Operations, CancelledOperationsAreSkippedButTheirDependentsStillRun)
{
    CancelFlag flag;
    QStringList ran;
    auto one = std::make_shared<Operation>(u"one"_s, [&] {
        ran << u"one"_s;
        flag.cancel();
    });
    auto two = std::make_shared<Operation>(u"two"_s, [&] {
        // A stage that finds the flag set ends its own work; the chain goes on.
        ran << (flag.isCancelled() ? u"two-skipped"_s : u"two"_s);
    });
    auto three = std::make_shared<Operation>(u"three"_s, [&] { ran << u"three"_s; });
    three->cancel();
    auto four = std::make_shared<Operation>(u"four"_s, [&] { ran << u"four"_s; });
    setOrderOfOperations({one.get(), two.get(), three.get(), four.get()});
    OperationQueue queue;
    queue.addOperations({one, two, three, four});
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ran, (QStringList{u"one"_s, u"two-skipped"_s, u"four"_s}));
    EXPECT_TRUE(three->isFinished());
}

TEST(Operations, QueueCanBeReusedAfterItFinished)
{
    OperationQueue queue;
    int count = 0;
    queue.addOperations({std::make_shared<Operation>(u"a"_s, [&] { ++count; })});
    queue.waitUntilAllOperationsAreFinished();
    queue.addOperations({std::make_shared<Operation>(u"b"_s, [&] { ++count; })});
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(count, 2);
    EXPECT_FALSE(queue.isRunning());
}

TEST(Operations, TheQueueKeepsOperationsThatOthersWaitForWhenNobodyElseDoes)
{
    QStringList ran;
    OperationQueue queue;
    {
        std::vector<std::shared_ptr<Operation>> chain;
        for (const char* name : {"a", "b", "c", "d"})
            chain.push_back(std::make_shared<Operation>(QLatin1String(name), [&ran, name] {
                std::this_thread::yield();
                ran << QLatin1String(name);
            }));
        std::vector<Operation*> order;
        for (const auto& op : chain)
            order.push_back(op.get());
        setOrderOfOperations(order);
        queue.addOperations(std::move(chain)); // the caller keeps none of them
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ran, (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
}
