#include "platform/queue/SerialQueue.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace quorvale::platform::queue {

namespace {

void waitForAllOf(SerialQueue& queue) {
    std::promise<void> done;
    queue.async([&done] { done.set_value(); });
    done.get_future().wait();
}

} // namespace

TEST(SerialQueueTest, RunsTheWorkOfEachThreadInItsOrderOnePieceAtATime) {
    SerialQueue queue;
    constexpr int perThread = 5000;
    // No atomics: the queue is what keeps the pieces apart.
    std::vector<int> next(4);
    bool inOrder = true;
    bool onMainThread = false;
    int atWork = 0;
    const auto mainThread = std::this_thread::get_id();
    {
        std::vector<std::jthread> threads;
        threads.reserve(next.size());
        for (auto& expected : next) {
            threads.emplace_back([&] {
                for (int i = 0; i < perThread; ++i) {
                    queue.async([&, i] {
                        inOrder = inOrder && ++atWork == 1 && expected++ == i;
                        onMainThread = onMainThread || std::this_thread::get_id() == mainThread;
                        --atWork;
                    });
                }
            });
        }
    }
    waitForAllOf(queue);
    EXPECT_EQ(next, std::vector<int>(next.size(), perThread));
    EXPECT_TRUE(inOrder);
    EXPECT_FALSE(onMainThread);
}

TEST(SerialQueueTest, RunsWorkOfRunningWorkAfterAllThatWaits) {
    SerialQueue queue;
    std::vector<int> ran;
    std::promise<void> queued;
    std::promise<void> done;
    queue.async([&] {
        queued.get_future().wait();
        ran.push_back(1);
        queue.async([&] {
            ran.push_back(3);
            done.set_value();
        });
    });
    queue.async([&] { ran.push_back(2); });
    queued.set_value();
    done.get_future().wait();
    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST(SerialQueueTest, RunsAllWorkWhenItEndsBeforeItAlsoByItsOwnWork) {
    std::promise<int> ranAll;
    auto queue = std::make_shared<SerialQueue>();
    std::promise<void> released;
    int count = 0;
    queue->async([queue, &released, &count]() mutable {
        released.get_future().wait();
        queue.reset();
        ++count;
    });
    queue->async([&ranAll, &count] { ranAll.set_value(count + 1); });
    queue.reset();
    released.set_value();
    EXPECT_EQ(ranAll.get_future().get(), 2);
}

} // namespace quorvale::platform::queue
