#include "app/UpdaterNotification.hpp"

#include "app/AppState.hpp"
#include "platform/json/JSONEncoder.hpp"
#include "support/RecordedLog.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quorvale::app {

namespace {

using platform::notification::ForeignObject;
using platform::notification::Notification;
using testing::IsEmpty;

class UpdaterNotificationTest : public testing::Test {
protected:
    void handle(const Notification& notification) { handleUpdaterNotification(notification, actions_, log_.logger()); }

    tests::RecordedLog log_;
    std::vector<std::string> done_;
    UpdaterActions actions_{
        .connectToAgent = [this] { done_.emplace_back("connect"); },
        .quitApplication = [this] { done_.emplace_back("quit"); },
        .setStatus = [this](bool value) { done_.emplace_back(value ? "set true" : "set false"); },
    };
};

} // namespace

TEST_F(UpdaterNotificationTest, ActsOnEveryCombinationOfFlagsInOneOrder) {
    for (unsigned flags = 0; flags < 8; ++flags) {
        const auto text = [&](unsigned bit) { return std::string((flags & bit) != 0 ? "true" : "false"); };
        std::vector<std::string> expectedActions;
        std::vector<std::string> expectedLines;
        if ((flags & 1U) != 0) {
            expectedActions.emplace_back("connect");
        }
        if ((flags & 2U) != 0) {
            expectedActions.emplace_back("quit");
            expectedLines.emplace_back("Updater: Terminating Helper");
        }
        expectedActions.push_back("set " + text(4));
        expectedLines.push_back("Received notification: " + text(4));

        done_.clear();
        const auto before = static_cast<std::ptrdiff_t>(log_.lines().size());
        handle({R"({"terminate":)" + text(2) + R"(,"running":)" + text(4) + R"(,"more":[1e400],"restart":)" + text(1) +
                "}"});
        const auto lines = log_.lines();
        EXPECT_EQ(done_, expectedActions) << flags;
        EXPECT_EQ(std::vector(lines.begin() + before, lines.end()), expectedLines) << flags;
    }
}

static_assert(!std::is_default_constructible_v<AppState>);

TEST(AppStateTest, IsReadFromWhatItIsWrittenAs) {
    const AppState state(true, false, true);
    EXPECT_EQ(decodeAppState(platform::json::JSONEncoder{}.encode(state)), state);
}

TEST_F(UpdaterNotificationTest, SaysInOneLineWhyItTakesNothing) {
    handle({});
    EXPECT_THAT(log_.lines(), IsEmpty());

    const std::vector<Notification> refused{
        {ForeignObject{"u"}},
        {""},
        {R"({"running":true,"restart":true})"},
        {R"({"running":1,"restart":true,"terminate":true})"},
    };
    for (const auto& notification : refused) {
        handle(notification);
    }
    EXPECT_THAT(done_, IsEmpty());
    const auto lines = log_.lines();
    EXPECT_EQ(lines.size(), refused.size());
    EXPECT_THAT(lines, testing::Each(testing::StartsWith("error: Failed to decode the updater's notification: ")));
    EXPECT_THAT(lines[2], testing::HasSubstr("terminate"));
    EXPECT_THAT(lines[3], testing::HasSubstr("running"));
}

} // namespace quorvale::app
