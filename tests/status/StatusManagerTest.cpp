#include "status/StatusManager.hpp"

#include "support/waitUntil.hpp"

#include <gmock/gmock.h>

#include <set>
#include <thread>
#include <vector>

namespace quorvale::status {

using platform::queue::MainQueue;
using testing::ElementsAre;

class StatusManagerTest : public testing::Test {
protected:
    /// Runs the work that is on the queue now.
    void runQueuedWork() {
        bool reached = false;
        queue_.async([&reached] { reached = true; });
        ASSERT_TRUE(tests::waitUntil([&reached] { return reached; }));
    }

    MainQueue queue_;
    std::shared_ptr<StatusManager> manager_ = std::make_shared<StatusManager>(queue_);
};

TEST_F(StatusManagerTest, StartsFalse) {
    EXPECT_FALSE(manager_->status());
}

TEST_F(StatusManagerTest, AppliesAValueLaterAlsoOnTheMainThread) {
    manager_->setStatus(true);
    EXPECT_FALSE(manager_->status());
    runQueuedWork();
    EXPECT_TRUE(manager_->status());
}

TEST_F(StatusManagerTest, AppliesAValueFromAnotherThreadOnTheMainThread) {
    std::thread::id notifiedOn;
    const auto subscription = manager_->objectWillChange([&notifiedOn] { notifiedOn = std::this_thread::get_id(); });
    std::thread([this] { manager_->setStatus(true); }).join();
    EXPECT_FALSE(manager_->status());
    runQueuedWork();
    EXPECT_TRUE(manager_->status());
    EXPECT_EQ(notifiedOn, std::this_thread::get_id());
}

TEST_F(StatusManagerTest, NotifiesBeforeEachAssignmentAlsoOfAnEqualValue) {
    std::vector<bool> before;
    const auto subscription = manager_->objectWillChange([&] { before.push_back(manager_->status()); });
    for (const bool value : {false, true, true, false}) {
        manager_->setStatus(value);
    }
    runQueuedWork();
    EXPECT_THAT(before, ElementsAre(false, false, true, true));
    EXPECT_FALSE(manager_->status());
}

TEST_F(StatusManagerTest, LivesUntilItsQueuedValuesAreApplied) {
    int notifications = 0;
    const auto subscription = manager_->objectWillChange([&notifications] { ++notifications; });
    manager_->setStatus(true);
    const std::weak_ptr<StatusManager> known = manager_;
    manager_.reset();
    runQueuedWork();
    EXPECT_EQ(notifications, 1);
    EXPECT_TRUE(known.expired());
}

TEST_F(StatusManagerTest, IsSharedAsOneInstanceByAllThreads) {
    std::vector<const StatusManager*> seen(4);
    {
        std::vector<std::jthread> threads;
        threads.reserve(seen.size());
        for (auto& place : seen) {
            threads.emplace_back([&place] { place = StatusManager::shared().get(); });
        }
    }
    EXPECT_EQ(std::set(seen.begin(), seen.end()).size(), 1U);
    EXPECT_FALSE(StatusManager::shared()->status());
}

} // namespace quorvale::status
