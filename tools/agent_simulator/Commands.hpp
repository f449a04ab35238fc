#pragma once

#include "agent_simulator/Agent.hpp"
#include "agent_simulator/EventWriter.hpp"

#include <QObject>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>

#include <chrono>

namespace quorvale::agent_simulator {

/// Obeys command lines, one after the other, from a script and then from standard input. The end of standard input
/// ends the commands, not the agent.
class Commands final : public QObject {
public:
    /// `patience` is how long `await` waits before the program gives up.
    Commands(Agent& agent, EventWriter& events, std::chrono::milliseconds patience);

    static constexpr auto help =
        "  state REPLY            answer agentState so from now on\n"
        "  answer                 send the late answers now\n"
        "  METHOD [ARGUMENT...]   call that method of the client\n"
        "  impostor METHOD ...    the same from a second connection, which doesn't own the agent's name\n"
        "  clients                list the registered clients\n"
        "  release, acquire       give up the agent's name, take it again\n"
        "  restart                give up name and connection and come back with new ones\n"
        "  await BEGINNING        obey the next command when an event with this beginning has been written since\n"
        "                         the last one awaited\n"
        "  quit, crash            end, end by abort()\n"
        "Empty lines and lines that begin with # are skipped.\n";
    static constexpr int commandFailed = 3;

    void add(const QStringList& lines);
    void readStandardInput();

private:
    void obeyWaiting();
    void obey(const QString& line);
    void fail(const QString& reason);
    void readInput();
    void noteEvent(const QString& event);

    Agent& agent_;
    EventWriter& events_;
    QStringList waiting_;
    QStringList unseenEvents_;
    QString awaited_;
    QTimer patience_;
    QByteArray partial_;
    QSocketNotifier input_;
    int exitStatus_ = 0;
};

} // namespace quorvale::agent_simulator
