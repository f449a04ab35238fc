#include "status/StatusManager.hpp"

#include "platform/json/JSONEncoder.hpp"
#include "status/AgentState.hpp"
#include "support/waitUntil.hpp"

#include <gtest/gtest.h>

#include <thread>
#include <type_traits>

namespace quorvale::status {

using platform::queue::MainQueue;

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

static_assert(!std::is_default_constructible_v<AgentState>);

TEST(AgentStateTest, YieldsTheActiveFlagOfTheTextThatItIsWrittenAs) {
    for (const auto active : {true, false}) {
        EXPECT_EQ(decodeAgentState(platform::json::JSONEncoder{}.encode(AgentState(active))), active);
    }
}

TEST_F(StatusManagerTest, AppliesAValueOfAnyThreadLaterOnTheMainThread) {
    std::thread::id notifiedOn;
    const auto subscription = manager_->objectWillChange([&notifiedOn] { notifiedOn = std::this_thread::get_id(); });
    manager_->setStatus(true);
    EXPECT_FALSE(manager_->status());
    runQueuedWork();
    EXPECT_TRUE(manager_->status());
    std::thread([this] { manager_->setStatus(false); }).join();
    EXPECT_TRUE(manager_->status());
    runQueuedWork();
    EXPECT_FALSE(manager_->status());
    EXPECT_EQ(notifiedOn, std::this_thread::get_id());
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

} // namespace quorvale::status
