#pragma once

#include "agent_simulator/Agent.hpp"

#include <QString>

#include <expected>

namespace quorvale::agent_simulator {

/// What the agent can be told, beside what every simulator understands.
class AgentCommands {
public:
    AgentCommands(Agent& agent, EventWriter& events) : agent_(agent), events_(events) {}

    static constexpr auto help =
        "  state REPLY            answer agentState so from now on\n"
        "  answer                 send the late answers now\n"
        "  METHOD [ARGUMENT...]   call that method of the client\n"
        "  impostor METHOD ...    the same from a second connection, which doesn't own the agent's name\n"
        "  flood COUNT VALUE [@NAME]\n"
        "                         call updateProtectionStatus so often, with true and false in turn and VALUE at "
        "last,\n"
        "                         as fast as the calls are answered; other commands are obeyed meanwhile\n"
        "  clients                list the registered clients\n"
        "  release, acquire       give up the agent's name, take it again\n"
        "  restart                give up name and connection and come back with new ones\n";

    /// Obeys `word`, which `rest` follows in its line, or says why it can't.
    std::expected<void, QString> obey(const QString& word, const QString& rest);

private:
    std::expected<void, QString> push(Agent::Sender sender, const QString& line);

    Agent& agent_;
    EventWriter& events_;
};

} // namespace quorvale::agent_simulator
