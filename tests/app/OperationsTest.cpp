#include "app/Operations.h"

#include "app/Progress.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

using namespace quillon::app;

TEST(Operations, OrderMakesEachDependOnThePreviousOne)
{
    Operation a(QStringLiteral("a"), {}), b(QStringLiteral("b"), {}), c(QStringLiteral("c"), {});
    setOrderOfOperations({&a, &b, &c});
    EXPECT_TRUE(a.dependencies().empty());
    ASSERT_EQ(b.dependencies().size(), 1u);
    EXPECT_EQ(b.dependencies()[0], &a);
    ASSERT_EQ(c.dependencies().size(), 1u);
    EXPECT_EQ(c.dependencies()[0], &b);
    setOrderOfOperations({&a, &b});
    EXPECT_EQ(b.dependencies().size(), 1u) << "a dependency is recorded once";
}

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
    auto first = std::make_shared<Operation>(QStringLiteral("first"), record("first"));
    auto second = std::make_shared<Operation>(QStringLiteral("second"), record("second"));
    auto third = std::make_shared<Operation>(QStringLiteral("third"), record("third"));
    setOrderOfOperations({first.get(), second.get(), third.get()});
    OperationQueue queue;
    // Added in reverse: the dependencies, not the order of adding, decide.
    queue.addOperations({third, second, first});
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ran, (QStringList{QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third")}));
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_TRUE(third->isFinished());
}

TEST(Operations, CancelledOperationsAreSkippedButTheirDependentsStillRun)
{
    CancelFlag flag;
    QStringList ran;
    auto one = std::make_shared<Operation>(QStringLiteral("one"), [&] {
        ran << QStringLiteral("one");
        flag.cancel();
    });
    auto two = std::make_shared<Operation>(QStringLiteral("two"), [&] {
        // A stage that finds the flag set ends its own work; the chain goes on.
        ran << (flag.isCancelled() ? QStringLiteral("two-skipped") : QStringLiteral("two"));
    });
    auto three = std::make_shared<Operation>(QStringLiteral("three"), [&] { ran << QStringLiteral("three"); });
    three->cancel();
    auto four = std::make_shared<Operation>(QStringLiteral("four"), [&] { ran << QStringLiteral("four"); });
    setOrderOfOperations({one.get(), two.get(), three.get(), four.get()});
    OperationQueue queue;
    queue.addOperations({one, two, three, four});
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ran, (QStringList{QStringLiteral("one"), QStringLiteral("two-skipped"), QStringLiteral("four")}));
    EXPECT_TRUE(three->isFinished());
}

TEST(Operations, QueueCanBeReusedAfterItFinished)
{
    OperationQueue queue;
    int count = 0;
    queue.addOperations({std::make_shared<Operation>(QStringLiteral("a"), [&] { ++count; })});
    queue.waitUntilAllOperationsAreFinished();
    queue.addOperations({std::make_shared<Operation>(QStringLiteral("b"), [&] { ++count; })});
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
    EXPECT_EQ(ran, (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d")}));
}
