#include "platform/queue/MainQueue.hpp"

#include "support/waitUntil.hpp"

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <memory>
#include <thread>
#include <vector>

namespace quorvale::platform::queue {

using namespace std::chrono_literals;
using testing::ElementsAre;
using tests::waitUntil;

class MainQueueTest : public testing::Test {
protected:
    MainQueue::Work note(int name) {
        return [this, name] { ran_.push_back(name); };
    }

    bool waitForRuns(std::size_t count) {
        return waitUntil([this, count] { return ran_.size() >= count; });
    }

    MainQueue queue_;
    std::vector<int> ran_;
};

TEST_F(MainQueueTest, RunsWorkLaterInTheOrderOfItsQueuing) {
    for (const int name : {1, 2, 3}) {
        queue_.async(note(name));
    }
    EXPECT_TRUE(ran_.empty());
    ASSERT_TRUE(waitForRuns(3));
    EXPECT_THAT(ran_, ElementsAre(1, 2, 3));
}

TEST_F(MainQueueTest, RunsWorkInTheOrderOfItsDeadlines) {
    const auto now = MainQueue::Clock::now();
    queue_.asyncAfter(now + 60ms, note(5));
    queue_.asyncAfter(now + 30ms, note(3));
    queue_.asyncAfter(now + 30ms, note(4));
    queue_.asyncAfter(now - 1h, note(1));
    queue_.async(note(2));
    ASSERT_TRUE(waitForRuns(5));
    EXPECT_THAT(ran_, ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(MainQueueTest, RunsNothingBeforeItsDeadline) {
    std::vector<MainQueue::Clock::duration> early;
    const auto start = MainQueue::Clock::now();
    for (int i = 1; i <= 50; ++i) {
        const auto deadline = start + i * 1700us;
        queue_.asyncAfter(deadline, [&early, deadline, this] {
            ran_.push_back(0);
            if (const auto now = MainQueue::Clock::now(); now < deadline) {
                early.push_back(deadline - now);
            }
        });
    }
    ASSERT_TRUE(waitForRuns(50));
    EXPECT_TRUE(early.empty());
}

TEST_F(MainQueueTest, RunsWorkOfRunningWorkInALaterTurn) {
    queue_.async([this] {
        ran_.push_back(1);
        queue_.async(note(3));
    });
    queue_.async(note(2));
    QCoreApplication::sendPostedEvents();
    EXPECT_THAT(ran_, ElementsAre(1, 2));
    ASSERT_TRUE(waitForRuns(3));
    EXPECT_THAT(ran_, ElementsAre(1, 2, 3));
}

TEST_F(MainQueueTest, RunsTheWorkOfEachThreadInItsOrderOnTheMainThread) {
    constexpr int perThread = 500;
    std::vector<int> next(4);
    bool inOrder = true;
    bool onMainThread = true;
    const auto mainThread = std::this_thread::get_id();
    std::vector<std::jthread> threads;
    threads.reserve(next.size());
    for (auto& expected : next) {
        threads.emplace_back([&] {
            for (int i = 0; i < perThread; ++i) {
                queue_.async([&, i] {
                    inOrder = inOrder && expected++ == i;
                    onMainThread = onMainThread && std::this_thread::get_id() == mainThread;
                });
            }
        });
    }
    EXPECT_TRUE(waitUntil([&] { return next == std::vector<int>(next.size(), perThread); }));
    EXPECT_TRUE(inOrder);
    EXPECT_TRUE(onMainThread);
}

TEST_F(MainQueueTest, DropsUnrunWorkWithTheQueue) {
    const auto resource = std::make_shared<int>(0);
    {
        MainQueue ended;
        ended.async([resource] { ++*resource; });
    }
    queue_.async(note(1));
    ASSERT_TRUE(waitForRuns(1));
    EXPECT_EQ(*resource, 0);
    EXPECT_EQ(resource.use_count(), 1);
}

} // namespace quorvale::platform::queue
