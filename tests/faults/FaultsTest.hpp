#pragma once

#include "support/AgentProcess.hpp"
#include "support/HelperProcess.hpp"
#include "support/PrivateBus.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
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

/// Two buses, and what a helper on them needs.
class FaultsTest : public testing::Test {
public:
    /// Ends the helper as a session does, which takes no second whatever is at fault.
    static void end(HelperProcess& helper) {
        helper.process().terminate();
        EXPECT_EQ(helper.process().waitForExit(std::chrono::seconds(1)), Process::Exit{});
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

} // namespace quorvale::tests
