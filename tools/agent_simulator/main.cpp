#include "agent_simulator/Agent.hpp"
#include "agent_simulator/Commands.hpp"
#include "agent_simulator/EventWriter.hpp"
#include "agent_simulator/StateReply.hpp"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <chrono>
#include <iostream>
#include <sys/resource.h>

using namespace quorvale::agent_simulator;

namespace {

constexpr int nameNotToBeHad = 1;
constexpr int usageError = 2;

QString description() {
    auto text = QStringLiteral("A stand-in for the agent: owns its name on the system bus (DBUS_SYSTEM_BUS_ADDRESS "
                               "chooses another one), answers its clients and calls them when it is told to.\n\n");
    text += QStringLiteral("Commands, one a line:\n") + QString::fromLatin1(Commands::help);
    text += QStringLiteral("\nREPLY, for --state and the command state:\n") + QString::fromLatin1(StateReply::help);
    text += QStringLiteral("\nMETHOD and its ARGUMENTs:\n") + QString::fromLatin1(ClientCall::help);
    text += QStringLiteral("\nEvents, one a line on standard output:\n"
                           "  ready NAME, released NAME             the agent's name is had, given up\n"
                           "  obeys COMMAND                         a command begins\n"
                           "  call METHOD CLIENT                    any call that came in\n"
                           "  registered CLIENT IDENTITY            registerClientWith came\n"
                           "  replied METHOD CLIENT [TEXT...]       agentState has been answered\n"
                           "  failed METHOD CLIENT ERROR TEXT       agentState has been answered with an error\n"
                           "  held METHOD CLIENT                    agentState waits for the command \"answer\"\n"
                           "  push-result METHOD ok                 the client has taken the call\n"
                           "  push-result METHOD error NAME TEXT    it hasn't\n"
                           "  impostor-result ...                   the same for a call of the impostor\n"
                           "  clients [CLIENT...]                   the registered clients, the last one last\n"
                           "  client-gone CLIENT                    a registered client has left the bus\n"
                           "  bus-gone                              the bus has ended the connection\n"
                           "  command-failed TEXT                   a command could not be obeyed\n"
                           "\nExit status: 0 after \"quit\", 3 if a command before it failed or nothing awaited came, "
                           "1 if the name is not to be had, 2 for a wrong command line.");
    return text;
}

QStringList linesOf(const QString& path, bool& readable) {
    QFile file(path);
    readable = file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll()).split(u'\n');
}

int fail(int status, const QString& reason) {
    std::cerr << "agent_simulator: " << reason.toStdString() << '\n';
    return status;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);

    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    const auto help = parser.addHelpOption();
    const QCommandLineOption state(QStringLiteral("state"), QStringLiteral("Answer agentState so."),
                                   QStringLiteral("REPLY"), QStringLiteral("{\"active\":false}"));
    const QCommandLineOption script(QStringLiteral("script"),
                                    QStringLiteral("Obey the lines of this file before those of standard input."),
                                    QStringLiteral("FILE"));
    const QCommandLineOption timestamps(
        QStringLiteral("timestamps"),
        QStringLiteral("Begin each event with the monotonic clock's milliseconds and a blank."));
    const QCommandLineOption patience(QStringLiteral("patience"), QStringLiteral("How long await waits; 30 at first."),
                                      QStringLiteral("SECONDS"), QStringLiteral("30"));
    parser.addOptions({state, script, timestamps, patience});
    if (!parser.parse(QCoreApplication::arguments())) {
        return fail(usageError, parser.errorText());
    }
    if (parser.isSet(help)) {
        parser.showHelp();
    }
    const auto reply = StateReply::parse(parser.value(state));
    if (!reply) {
        return fail(usageError, reply.error());
    }
    bool understood = false;
    const std::chrono::seconds seconds(parser.value(patience).toUInt(&understood));
    if (!understood || !parser.positionalArguments().isEmpty()) {
        return fail(usageError, QStringLiteral("the command line is wrong; --help explains it"));
    }

    // The command "crash" is part of ordinary tests, which have no use for a core file.
    const rlimit noCore{.rlim_cur = 0, .rlim_max = 0};
    setrlimit(RLIMIT_CORE, &noCore);

    EventWriter events(parser.isSet(timestamps) ? EventWriter::Timestamps::On : EventWriter::Timestamps::Off);
    Agent agent(events, *reply);
    Commands commands(agent, events, seconds);
    if (parser.isSet(script)) {
        bool readable = false;
        commands.add(linesOf(parser.value(script), readable));
        if (!readable) {
            return fail(usageError, QStringLiteral("cannot read ") + parser.value(script));
        }
    }
    if (const auto started = agent.start(); !started) {
        return fail(nameNotToBeHad, started.error());
    }
    commands.readStandardInput();
    return QCoreApplication::exec();
}
