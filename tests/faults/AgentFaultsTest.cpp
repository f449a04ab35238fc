#include "faults/FaultsTest.hpp"

#include <algorithm>
#include <optional>

namespace quorvale::tests {

namespace {

using testing::Contains;
using testing::Not;
using testing::UnorderedElementsAreArray;

using AgentFaultsTest = RunningFaultsTest;

/// What a restart says that only the agent's end or the state can add to; the previous connection ends at any time.
std::vector<std::string> outcome(std::vector<std::string> lines, bool keepInvalidation) {
    std::erase_if(lines, [&](const std::string& line) {
        return line.contains("Attempting to") || line.contains("existing connection") || line.contains("resum") ||
               line.contains("Agent State: ") || line == told || (line == invalidated && !keepInvalidation);
    });
    return lines;
}

} // namespace

TEST_F(AgentFaultsTest, GoesOnWhereverTheAgentIsKilled) {
    struct Case {
        const char* moment;
        /// What the agent is told beforehand.
        std::vector<std::string> commands;
        /// What it is told once the state is known.
        std::vector<std::string> afterwards;
        std::vector<std::string> lines;
    };

    const std::vector<Case> cases{
        {"before it has its name", {"release", "crash"}, {}, {invalidated, notRegistered, noState}},
        {"when registered", {"crash registered"}, {}, {interrupted, noState}},
        {"before the reply", {"crash call agentState"}, {}, {interrupted, noState}},
        {"with a reply held back", {"state late x", "crash held"}, {}, {interrupted, noState}},
        {"after the reply", {}, {"crash"}, {stateKnown, interrupted}},
        {"while pushing", {}, {"flood 100000 true", "crash"}, {stateKnown, interrupted}},
    };
    for (const auto& [moment, commands, afterwards, lines] : cases) {
        SCOPED_TRACE(moment);
        const auto before = helper_.log().size();
        const auto now = [&] { return outcome(logSince(helper_, before), lines.front() == invalidated); };
        AgentProcess agent(systemBus_, {"--state", active});
        std::ranges::for_each(commands, [&](const auto& command) { agent.command(command); });
        helper_.notify(restart);
        ASSERT_TRUE(afterwards.empty() || helper_.logs(stateKnown, before));
        std::ranges::for_each(afterwards, [&](const auto& command) { agent.command(command); });
        ASSERT_TRUE(helper_.logs(lines.back(), before));
        ASSERT_TRUE(waitUntil([&] { return now().size() >= lines.size(); }));
        EXPECT_THAT(now(), UnorderedElementsAreArray(lines));
    }
    const auto before = helper_.log().size();
    const AgentProcess agent(systemBus_, {"--state", active});
    helper_.notify(restart);
    EXPECT_TRUE(helper_.logs(stateKnown, before));
    EXPECT_TRUE(helper_.shows("Protected"));
    EXPECT_THAT(outcome(logSince(helper_, before), false), testing::ElementsAre(stateKnown));
}

TEST_F(AgentFaultsTest, AnswersWhileAHundredThousandPushesComeInARow) {
    AgentProcess agent(systemBus_, {"--state", active});
    helper_.notify(restart);
    ASSERT_TRUE(helper_.logs(stateKnown));
    agent.command("flood 100000 false");
    bool answers = true;
    const auto isOver = [&] { return agent.events().back().starts_with("flooded "); };
    EXPECT_TRUE(
        waitUntil([&] { return isOver() || !(answers = helper_.icon().has_value()); }, std::chrono::seconds(60)));
    EXPECT_TRUE(answers) << "the icon does not answer";
    EXPECT_EQ(agent.events().back(), "flooded 100000 ok 100000 errors 0 last false");
    EXPECT_TRUE(helper_.shows("Unprotected"));
    EXPECT_EQ(std::ranges::count(helper_.log(), "info Helper: Agent State: true"), 50'000);
}

TEST_F(AgentFaultsTest, TakesTextsAsLongAsTheBusCarries) {
    // A message may have 32 MiB, its header included.
    const std::string nearly32MiB = "33550000";
    AgentProcess agent(systemBus_, {"--state", "padded " + nearly32MiB + " " + active});
    const auto client = connect(agent);
    ASSERT_TRUE(helper_.logs(stateKnown));
    EXPECT_TRUE(helper_.shows("Protected"));

    const auto toClient = " " + client + " /com/quorvale/QuorvaleHelper com.quorvale.ClientCommunication ";
    RawPeerProcess successor(systemBus_);
    replace(agent, successor);
    EXPECT_EQ(successor.obey("call" + toClient + "updateEventLogDefaults s " + nearly32MiB), "ok");
    EXPECT_EQ(successor.obey("call" + toClient + "updateProtectionStatus s " + nearly32MiB),
              "org.freedesktop.DBus.Error.InvalidArgs updateProtectionStatus: argument isProtected does not decode.");

    const std::string notification = "signal - /x com.quorvale.DistributedNotification QuorvaleHelper s ";
    RawPeerProcess updater(sessionBus_);
    const auto before = helper_.log().size();
    EXPECT_EQ(updater.obey(notification + nearly32MiB + " 0 - no JSON"), "ok");
    EXPECT_EQ(updater.obey(notification + nearly32MiB + R"( 0 - {"running":false,"restart":false,"terminate":false})"),
              "ok");
    ASSERT_TRUE(helper_.logs(told, before));
    EXPECT_TRUE(helper_.shows("Unprotected"));
    EXPECT_THAT(helper_.log(), Contains(testing::StartsWith("error Failed to decode the updater's")).Times(1));
}

TEST_F(AgentFaultsTest, TakesNoReplyButTheAgents) {
    AgentProcess agent(systemBus_, {"--state", R"(late {"active":false})"});
    const auto client = connect(agent);
    ASSERT_TRUE(agent.waitForEvent("held agentState"));
    RawPeerProcess stranger(systemBus_);
    EXPECT_EQ(stranger.obey("forge " + client + " 200 as 1 0 - " + active), "ok");
    EXPECT_EQ(stranger.obey("forge " + client + " 200"), "ok");
    EXPECT_THAT(stranger.obey("call " + client + " /com/quorvale/QuorvaleHelper com.quorvale.ClientCommunication none"),
                testing::StartsWith("org.freedesktop.DBus.Error.AccessDenied"));
    EXPECT_THAT(helper_.log(), Not(Contains(stateKnown)));
    EXPECT_TRUE(helper_.shows("Unprotected"));

    helper_.notify(restart);
    ASSERT_TRUE(agent.waitForEvent("held agentState"));
    agent.command("answer");
    EXPECT_TRUE(helper_.logs("info Initial State Changed: false"));
}

} // namespace quorvale::tests
