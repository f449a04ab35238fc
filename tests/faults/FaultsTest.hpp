#pragma once

#include "support/AgentProcess.hpp"
#include "support/HelperProcess.hpp"
#include "support/PrivateBus.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace quorvale::tests {

inline constexpr auto launched = "info Quorvale Helper launched";
inline constexpr auto restart = R"({"running":false,"restart":true,"terminate":false})";
inline constexpr auto active = R"({"active":true})";
/// The last line of a restart before its registration.
inline constexpr auto told = "info Received notification: false";
inline constexpr auto stateKnown = "info Initial State Changed: true";
inline constexpr auto notConnected = "info Helper XPC: Failed to connect to agent";
inline constexpr auto invalidated = "info Helper XPC: Connection invalidated";
inline constexpr auto interrupted = "info Helper XPC: Connection interrupted";
inline constexpr auto notRegistered = "error Failed to register client with agent: <private>";
inline constexpr auto noState = "error Error creating provider proxy: <private>";

/// The raw peer as a process on `bus`. What it can be told: `raw_peer --help`.
class RawPeerProcess {
public:
    explicit RawPeerProcess(const PrivateBus& bus)
        : process_({.program = QUORVALE_RAW_PEER, .arguments = {bus.address()}}) {}

    /// Has it obey one command line: what it answers.
    std::string obey(std::string_view line) {
        process_.send(line);
        return answer();
    }

    /// The same for many in a row, which takes far less time than one by one.
    std::vector<std::string> obey(const std::vector<std::string>& lines) {
        std::ranges::for_each(lines, [this](const std::string& line) { process_.send(line); });
        std::vector<std::string> answers;
        std::ranges::generate_n(std::back_inserter(answers), std::ssize(lines), [this] { return answer(); });
        return answers;
    }

private:
    std::string answer() {
        return process_.waitForLine([](std::string_view) { return true; }).value_or("no answer");
    }

    Process process_;
};

/// Two buses, and what a helper on them needs.
class FaultsTest : public testing::Test {
public:
    /// Ends the helper as a session does, which takes no second whatever is at fault.
    static void end(HelperProcess& helper) {
        helper.process().terminate();
        EXPECT_EQ(helper.process().waitForExit(std::chrono::seconds(1)), Process::Exit{});
        const auto lines = helper.log();
        // A connection's thread may write behind it; where nothing is to be read of the log, it is not there.
        EXPECT_TRUE(lines.empty() || std::ranges::count(lines, "info Quorvale Helper terminated") == 1);
    }

    /// The lines after the first `count`.
    static std::vector<std::string> logSince(const HelperProcess& helper, std::size_t count) {
        const auto lines = helper.log();
        return {lines.begin() + static_cast<std::ptrdiff_t>(count), lines.end()};
    }

protected:
    PrivateBus systemBus_;
    PrivateBus sessionBus_;
    HelperProcess::Environment environment_ = HelperProcess::on(systemBus_, sessionBus_);
};

/// With the helper running.
class RunningFaultsTest : public FaultsTest {
protected:
    void SetUp() override { ASSERT_TRUE(helper_.logs(launched)); }

    void TearDown() override { end(helper_); }

    /// Connects to `agent`: the helper's name on the bus.
    std::string connect(AgentProcess& agent) {
        helper_.notify(restart);
        const auto event = agent.waitForEvent("registered ").value_or("registered nobody");
        return event.substr(11, event.find(' ', 11) - 11);
    }

    /// Has `successor` become the agent in place of `agent`.
    void replace(AgentProcess& agent, RawPeerProcess& successor) {
        ASSERT_TRUE(helper_.logs(stateKnown));
        agent.command("release");
        ASSERT_TRUE(helper_.logs(interrupted));
        ASSERT_EQ(successor.obey("own QVL7T4M2XK.com.quorvale.QuorvaleFilter"), "ok");
    }

    HelperProcess helper_{environment_};
};

} // namespace quorvale::tests
