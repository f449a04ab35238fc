#include "platform/queue/MainQueue.hpp"
#include "platform/queue/SerialQueue.hpp"
#include "support/waitUntil.hpp"

#include <QCoreApplication>
#include <QTimer>
#include <gmock/gmock.h>

#include <algorithm>
#include <future>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace quorvale::platform::queue {

using namespace std::chrono_literals;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Not;
using tests::waitUntil;

namespace {

/// Work that four threads queue at the same time. No atomics: the queue is what keeps its pieces apart.
struct WorkOfThreads {
    static constexpr int perThread = 2000;

    template <typename Queue>
    explicit WorkOfThreads(Queue& queue) {
        for (auto& expected : next) {
            threads.emplace_back([this, &queue, &expected] {
                for (int i = 0; i < perThread; ++i) {
                    queue.async([this, &expected, i] {
                        inOrder = inOrder && ++atWork == 1 && expected++ == i;
                        ranOn.insert(std::this_thread::get_id());
                        std::this_thread::yield();
                        --atWork;
                    });
                }
            });
        }
    }

    std::vector<int> next = std::vector<int>(4);
    bool inOrder = true;
    int atWork = 0;
    std::set<std::thread::id> ranOn;
    std::vector<std::jthread> threads;
};

} // namespace

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
    const WorkOfThreads work(queue_);
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

TEST(SerialQueueTest, RunsTheWorkOfEachThreadInItsOrderOnePieceAtATime) {
    SerialQueue queue;
    WorkOfThreads work(queue);
    work.threads.clear();
    std::promise<void> done;
    queue.async([&done] { done.set_value(); });
    done.get_future().wait();
    EXPECT_THAT(work.next, Each(WorkOfThreads::perThread));
    EXPECT_TRUE(work.inOrder);
    EXPECT_THAT(work.ranOn, Not(Contains(std::this_thread::get_id())));
}

TEST(SerialQueueTest, RunsAllWorkWhenItEndsBeforeItAlsoByItsOwnWork) {
    std::vector<int> ran;
    std::promise<void> released;
    std::promise<void> done;
    auto queue = std::make_shared<SerialQueue>();
    queue->async([&, queue]() mutable {
        released.get_future().wait();
        ran.push_back(1);
        // Behind all that waits already.
        queue->async([&] {
            ran.push_back(3);
            done.set_value();
        });
        queue.reset();
    });
    queue->async([&ran] { ran.push_back(2); });
    queue.reset();
    released.set_value();
    done.get_future().wait();
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
}

} // namespace quorvale::platform::queue
