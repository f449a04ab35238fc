#include "platform/queue/MainQueue.hpp"

#include "platform/queue/WorkOfThreads.hpp"
#include "support/waitUntil.hpp"

#include <QCoreApplication>
#include <QTimer>
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace quorvale::platform::queue {

using namespace std::chrono_literals;
using testing::Each;
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

TEST_F(MainQueueTest, RunsWorkLaterInTheOrderOfItsDeadlines) {
    const auto now = MainQueue::Clock::now();
    queue_.asyncAfter(now + 60ms, note(6));
    queue_.asyncAfter(now + 30ms, note(4));
    queue_.asyncAfter(now + 30ms, note(5));
    queue_.asyncAfter(now - 1h, note(1));
    queue_.async(note(2));
    queue_.async(note(3));
    EXPECT_TRUE(ran_.empty());
    ASSERT_TRUE(waitForRuns(6));
    EXPECT_THAT(ran_, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(MainQueueTest, RunsNothingBeforeItsDeadline) {
    std::vector<MainQueue::Clock::duration> late;
    const auto start = MainQueue::Clock::now();
    for (int i = 1; i <= 50; ++i) {
        const auto deadline = start + i * 1700us;
        queue_.asyncAfter(deadline, [&late, deadline] { late.push_back(MainQueue::Clock::now() - deadline); });
    }
    ASSERT_TRUE(waitUntil([&late] { return late.size() == 50; }));
    EXPECT_THAT(late, Each(testing::Ge(0s)));
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

TEST_F(MainQueueTest, LetsTheRestOfTheEventLoopThroughWhileMuchIsDue) {
    std::size_t before = 0;
    for (int piece = 0; piece < 300; ++piece) {
        queue_.async([this, piece] {
            for (const auto end = MainQueue::Clock::now() + 1ms; MainQueue::Clock::now() < end;) {
            }
            ran_.push_back(piece);
        });
    }
    QTimer::singleShot(1, [&] { before = ran_.size(); });
    ASSERT_TRUE(waitForRuns(300));
    EXPECT_GT(before, 0U);
    EXPECT_LT(before, 300U);
    EXPECT_TRUE(std::ranges::is_sorted(ran_));
}

TEST_F(MainQueueTest, RunsTheWorkOfEachThreadInItsOrderOnTheMainThread) {
    const WorkOfThreads work([this](MainQueue::Work piece) { queue_.async(std::move(piece)); });
    EXPECT_TRUE(waitUntil([&work] { return work.next == std::vector(4, WorkOfThreads::perThread); }));
    EXPECT_TRUE(work.inOrder);
    EXPECT_THAT(work.ranOn, ElementsAre(std::this_thread::get_id()));
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
