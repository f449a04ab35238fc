#include "support/AgentProcess.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorvale::tests {

AgentProcess::AgentProcess(const PrivateBus& bus, const std::vector<std::string>& arguments)
    : process_({.program = QUORVALE_AGENT_SIMULATOR,
                .arguments = arguments,
                .environment = {{"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}}}) {
    EXPECT_TRUE(waitForEvent("ready ")) << "the agent doesn't get its name";
}

void AgentProcess::command(std::string_view line) {
    process_.send(line);
    ++commands_;
    const auto obeyed = [this] {
        return std::ranges::count_if(events(), [](const auto& event) { return event.starts_with("obeys "); });
    };
    EXPECT_TRUE(waitUntil([&] { return obeyed() >= commands_ || !process_.running(); })) << line;
}

std::optional<std::string> AgentProcess::waitForEvent(std::string_view beginning) {
    return process_.waitForLine([beginning](std::string_view line) { return line.starts_with(beginning); });
}

} // namespace quorvale::tests
