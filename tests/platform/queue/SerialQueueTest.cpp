#include "platform/queue/SerialQueue.hpp"

#include "platform/queue/WorkOfThreads.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <memory>
#include <utility>
#include <vector>

namespace quorvale::platform::queue {

using namespace std::chrono_literals;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Not;

TEST(SerialQueueTest, RunsTheWorkOfEachThreadInItsOrderOnePieceAtATime) {
    SerialQueue queue;
    WorkOfThreads work([&queue](SerialQueue::Work piece) { EXPECT_TRUE(queue.async(std::move(piece))); });
    work.threads.clear();
    std::promise<void> done;
    EXPECT_TRUE(queue.async([&done] { done.set_value(); }));
    done.get_future().wait();
    EXPECT_THAT(work.next, Each(WorkOfThreads::perThread));
    EXPECT_TRUE(work.inOrder);
    EXPECT_THAT(work.ranOn, Not(Contains(std::this_thread::get_id())));
}

TEST(SerialQueueTest, StartsAgainAfterItRanEmpty) {
    SerialQueue queue;
    for (int round = 0; round < 3; ++round) {
        const auto rested = std::make_shared<std::promise<void>>();
        // The thread ends once the queue is empty.
        ASSERT_TRUE(queue.async([rested] {
            thread_local const std::shared_ptr<void> end(nullptr, [rested](void*) { rested->set_value(); });
        }));
        ASSERT_EQ(rested->get_future().wait_for(20s), std::future_status::ready) << round;
    }
}

TEST(SerialQueueTest, RunsAllWorkWhenItEndsBeforeItAlsoByItsOwnWork) {
    std::vector<int> ran;
    std::promise<void> released;
    std::promise<void> done;
    auto queue = std::make_shared<SerialQueue>();
    EXPECT_TRUE(queue->async([&, queue]() mutable {
        released.get_future().wait();
        ran.push_back(1);
        // Behind all that waits already.
        EXPECT_TRUE(queue->async([&] {
            ran.push_back(3);
            done.set_value();
        }));
        queue.reset();
    }));
    EXPECT_TRUE(queue->async([&ran] { ran.push_back(2); }));
    queue.reset();
    released.set_value();
    done.get_future().wait();
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
}

} // namespace quorvale::platform::queue
