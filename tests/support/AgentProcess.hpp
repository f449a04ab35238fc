#pragma once

#include "support/PrivateBus.hpp"
#include "support/Process.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvale::tests {

/// The agent simulator as a process on `bus`, taken as the system bus. What it can be told and what it reports:
/// `agent_simulator --help`. It has the agent's name when this object has been made; otherwise the test fails.
class AgentProcess {
public:
    explicit AgentProcess(const PrivateBus& bus, const std::vector<std::string>& arguments = {});

    /// Has the agent obey one command line. Whatever reaches the agent after this has returned meets it obeyed.
    void command(std::string_view line);

    /// The next event that begins with `beginning`; no value if none comes within the deadline.
    std::optional<std::string> waitForEvent(std::string_view beginning);

    /// Every event so far.
    [[nodiscard]] const std::vector<std::string>& events() const { return process_.lines(); }

private:
    Process process_;
    std::ptrdiff_t commands_ = 0;
};

} // namespace quorvale::tests
