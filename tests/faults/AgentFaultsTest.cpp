#include "faults/FaultsTest.hpp"
#include "faults/RawPeerProcess.hpp"

#include <algorithm>
#include <optional>

namespace quorvale::tests {

namespace {

using testing::Contains;
using testing::Not;
using testing::UnorderedElementsAreArray;

using AgentFaultsTest = FaultsTest;

/// The client's name of the last registration.
std::string clientOf(AgentProcess& agent) {
    const auto event = agent.waitForEvent("registered ").value_or("registered nobody");
    return event.substr(11, event.find(' ', 11) - 11);
}

/// What a restart says that only the agent's end or the state can add to; the previous connection ends at any time.
std::vector<std::string> outcome(std::vector<std::string> lines, bool keepInvalidation) {
    std::erase_if(lines, [&](const std::string& line) {
        return line.contains("Attempting to") || line.contains("existing connection") || line.contains("resum") ||
               line == told || (line == invalidated && !keepInvalidation);
    });
    return lines;
}

} // namespace

TEST_F(AgentFaultsTest, GoesOnWhereverTheAgentIsKilled) {
    struct Case {
        const char* moment;
        /// What the agent is told beforehand.
        std::vector<std::string> commands;
        /// What is told to it once the state is known; it dies of it.
        const char* afterwards;
        std::vector<std::string> lines;
    };

    const std::vector<Case> cases{
        {"before it has its name", {"release", "crash"}, nullptr, {invalidated, notRegistered, noState}},
        {"when registered", {"crash registered"}, nullptr, {interrupted, noState}},
        {"before the reply", {"crash call agentState"}, nullptr, {interrupted, noState}},
        {"with a reply held back", {"state late x", "crash held"}, nullptr, {interrupted, noState}},
        {"after the reply", {}, "crash", {stateKnown, interrupted}},
        {"while pushing", {"crash push-result"}, "updateRulesStatus true", {stateKnown, interrupted}},
    };
    HelperProcess helper(environment_);
    ASSERT_TRUE(helper.logs(launched));
    for (const auto& [moment, commands, afterwards, lines] : cases) {
        SCOPED_TRACE(moment);
        const auto before = helper.log().size();
        const auto now = [&] { return outcome(logSince(helper, before), lines.front() == invalidated); };
        AgentProcess agent(systemBus_, {"--state", active});
        for (const auto& command : commands) {
            agent.command(command);
        }
        helper.notify(restart);
        if (afterwards) {
            ASSERT_TRUE(helper.logs(stateKnown, before));
            agent.command(afterwards);
        }
        ASSERT_TRUE(helper.logs(lines.back(), before));
        ASSERT_TRUE(waitUntil([&] { return now().size() >= lines.size(); }));
        EXPECT_THAT(now(), UnorderedElementsAreArray(lines));
    }
    const auto before = helper.log().size();
    const AgentProcess agent(systemBus_, {"--state", active});
    helper.notify(restart);
    EXPECT_TRUE(helper.logs(stateKnown, before));
    EXPECT_TRUE(helper.shows("Protected"));
    EXPECT_THAT(outcome(logSince(helper, before), false), testing::ElementsAre(stateKnown));
    end(helper);
}

TEST_F(AgentFaultsTest, AnswersWhileAHundredThousandPushesComeInARow) {
    AgentProcess agent(systemBus_, {"--state", active});
    HelperProcess helper(environment_);
    ASSERT_TRUE(helper.logs(launched));
    helper.notify(restart);
    ASSERT_TRUE(helper.logs(stateKnown));
    agent.command("flood 100000 false");
    bool answers = true;
    const auto isOver = [&] { return agent.events().back().starts_with("flooded "); };
    EXPECT_TRUE(
        waitUntil([&] { return isOver() || !(answers = helper.icon().has_value()); }, std::chrono::seconds(60)));
    EXPECT_TRUE(answers) << "the icon does not answer";
    EXPECT_EQ(agent.events().back(), "flooded 100000 ok 100000 errors 0 last false");
    EXPECT_TRUE(helper.shows("Unprotected"));
    EXPECT_EQ(std::ranges::count(helper.log(), "info Helper: Agent State: true"), 50'000);
    end(helper);
}

TEST_F(AgentFaultsTest, TakesTextsAsLongAsTheBusCarries) {
    // A message may have 32 MiB, its header included.
    const std::string nearly32MiB = "33550000";
    AgentProcess agent(systemBus_, {"--state", "padded " + nearly32MiB + " " + active});
    HelperProcess helper(environment_);
    ASSERT_TRUE(helper.logs(launched));
    helper.notify(restart);
    const auto client = clientOf(agent);
    ASSERT_TRUE(helper.logs(stateKnown));
    EXPECT_TRUE(helper.shows("Protected"));

    const auto toClient = " " + client + " /com/quorvale/QuorvaleHelper com.quorvale.ClientCommunication ";
    agent.command("release");
    ASSERT_TRUE(helper.logs(interrupted));
    RawPeerProcess successor(systemBus_);
    ASSERT_EQ(successor.obey("own QVL7T4M2XK.com.quorvale.QuorvaleFilter"), "ok");
    EXPECT_EQ(successor.obey("call" + toClient + "updateEventLogDefaults s " + nearly32MiB), "ok");
    EXPECT_EQ(successor.obey("call" + toClient + "updateProtectionStatus s " + nearly32MiB),
              "org.freedesktop.DBus.Error.InvalidArgs updateProtectionStatus: argument isProtected does not decode.");

    const std::string notification = "signal - /x com.quorvale.DistributedNotification QuorvaleHelper s ";
    RawPeerProcess updater(sessionBus_);
    const auto before = helper.log().size();
    EXPECT_EQ(updater.obey(notification + nearly32MiB + " 0 - no JSON"), "ok");
    EXPECT_EQ(updater.obey(notification + nearly32MiB + R"( 0 - {"running":false,"restart":false,"terminate":false})"),
              "ok");
    ASSERT_TRUE(helper.logs(told, before));
    EXPECT_TRUE(helper.shows("Unprotected"));
    EXPECT_THAT(helper.log(), Contains(testing::StartsWith("error Failed to decode the updater's")).Times(1));
    end(helper);
}

TEST_F(AgentFaultsTest, TakesNoReplyButTheAgents) {
    AgentProcess agent(systemBus_, {"--state", R"(late {"active":false})"});
    HelperProcess helper(environment_);
    ASSERT_TRUE(helper.logs(launched));
    helper.notify(restart);
    const auto client = clientOf(agent);
    ASSERT_TRUE(agent.waitForEvent("held agentState"));
    RawPeerProcess stranger(systemBus_);
    EXPECT_EQ(stranger.obey("forge " + client + " 200 as 1 0 - " + active), "ok");
    EXPECT_EQ(stranger.obey("forge " + client + " 200"), "ok");
    EXPECT_THAT(stranger.obey("call " + client + " /com/quorvale/QuorvaleHelper com.quorvale.ClientCommunication none"),
                testing::StartsWith("org.freedesktop.DBus.Error.AccessDenied"));
    EXPECT_THAT(helper.log(), Not(Contains(stateKnown)));
    EXPECT_TRUE(helper.shows("Unprotected"));

    helper.notify(restart);
    ASSERT_TRUE(agent.waitForEvent("held agentState"));
    agent.command("answer");
    EXPECT_TRUE(helper.logs("info Initial State Changed: false"));
    end(helper);
}

} // namespace quorvale::tests
