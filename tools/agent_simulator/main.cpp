#include "agent_simulator/Agent.hpp"
#include "agent_simulator/AgentCommands.hpp"
#include "agent_simulator/StateReply.hpp"
#include "support/Simulator.hpp"

#include <QCoreApplication>

using namespace quorvale::agent_simulator;
using quorvale::simulator::Commands;
using quorvale::simulator::Simulator;

namespace {

Simulator::Description description(const QCommandLineOption& state) {
    return {
        .summary = QStringLiteral("A stand-in for the agent: owns its name on the system bus (DBUS_SYSTEM_BUS_ADDRESS "
                                  "chooses another one), answers its clients and calls them when it is told to."),
        .commands = QString::fromLatin1(AgentCommands::help) + QString::fromLatin1(Commands::help) +
                    QStringLiteral("\nREPLY, for --state and the command state:\n") +
                    QString::fromLatin1(StateReply::help) + QStringLiteral("\nMETHOD and its ARGUMENTs:\n") +
                    QString::fromLatin1(ClientCall::help),
        .events = QStringLiteral("  ready NAME, released NAME             the agent's name is had, given up\n"
                                 "  call METHOD CLIENT                    any call that came in\n"
                                 "  registered CLIENT IDENTITY            registerClientWith came\n"
                                 "  replied METHOD CLIENT [TEXT...]       agentState has been answered\n"
                                 "  failed METHOD CLIENT ERROR TEXT       agentState has been answered with an error\n"
                                 "  held METHOD CLIENT                    agentState waits for the command \"answer\"\n"
                                 "  push-result METHOD ok                 the client has taken the call\n"
                                 "  push-result METHOD error NAME TEXT    it hasn't\n"
                                 "  impostor-result ...                   the same for a call of the impostor\n") +
                  QString::fromLatin1(Flood::eventHelp) +
                  QStringLiteral("  clients [CLIENT...]                   the registered clients, the last one last\n"
                                 "  client-gone CLIENT                    a registered client has left the bus\n"
                                 "  bus-gone                              the bus has ended the connection\n"),
        .options = {state},
    };
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QCommandLineOption state(QStringLiteral("state"), QStringLiteral("Answer agentState so."),
                                   QStringLiteral("REPLY"), QStringLiteral("{\"active\":false}"));
    Simulator simulator(description(state));
    const auto reply = StateReply::parse(simulator.value(state));
    if (!reply) {
        return Simulator::fail(Simulator::usageError, reply.error());
    }
    Agent agent(simulator.events(), *reply);
    AgentCommands commands(agent, simulator.events());
    return simulator.run([&] { return agent.start(); },
                         [&](const QString& word, const QString& rest) { return commands.obey(word, rest); });
}
