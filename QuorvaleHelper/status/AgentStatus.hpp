#pragma once

#include "status/AgentState.hpp"

namespace quorvale::status {

/// Holds one agent state for several owners, each of whom sees a change made by another.
class AgentStatus {
public:
    explicit AgentStatus(AgentState initial) : state(initial) {}

    AgentStatus(const AgentStatus&) = delete;
    AgentStatus& operator=(const AgentStatus&) = delete;

    AgentState state;
};

} // namespace quorvale::status
