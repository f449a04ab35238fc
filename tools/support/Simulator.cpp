#include "support/Simulator.hpp"

#include <QCoreApplication>
#include <QFile>

#include <cstdlib>
#include <iostream>
#include <utility>

namespace quorvale::simulator {

namespace {

const QCommandLineOption& scriptOption() {
    static const QCommandLineOption option(
        QStringLiteral("script"), QStringLiteral("Obey the lines of this file before those of standard input."),
        QStringLiteral("FILE"));
    return option;
}

const QCommandLineOption& timestampsOption() {
    static const QCommandLineOption option(
        QStringLiteral("timestamps"),
        QStringLiteral("Begin each event with the monotonic clock's milliseconds and a blank."));
    return option;
}

const QCommandLineOption& patienceOption() {
    static const QCommandLineOption option(QStringLiteral("patience"),
                                           QStringLiteral("How long await waits; 30 at first."),
                                           QStringLiteral("SECONDS"), QStringLiteral("30"));
    return option;
}

} // namespace

Simulator::Simulator(const Description& description) {
    parser_.setApplicationDescription(
        description.summary + QStringLiteral("\n\nCommands, one a line:\n") + description.commands +
        QStringLiteral("\nEvents, one a line on standard output:\n"
                       "  obeys COMMAND                         a command begins\n") +
        description.events +
        QStringLiteral("  command-failed TEXT                   a command could not be obeyed\n"
                       "\nExit status: 0 after \"quit\", 3 if a command before it failed or nothing awaited came, "
                       "1 if it cannot start, 2 for a wrong command line."));
    const auto help = parser_.addHelpOption();
    parser_.addOptions(description.options);
    parser_.addOptions({scriptOption(), timestampsOption(), patienceOption()});
    const bool parsed = parser_.parse(QCoreApplication::arguments());
    if (parsed && parser_.isSet(help)) {
        parser_.showHelp();
    }
    bool understood = false;
    patience_ = std::chrono::seconds(parser_.value(patienceOption()).toUInt(&understood));
    if (!parsed || !understood || !parser_.positionalArguments().isEmpty()) {
        std::exit(fail(usageError,
                       parsed ? QStringLiteral("the command line is wrong; --help explains it") : parser_.errorText()));
    }
    if (parser_.isSet(timestampsOption())) {
        events_.setTimestamps(EventWriter::Timestamps::On);
    }
}

int Simulator::fail(int status, const QString& reason) {
    std::cerr << QCoreApplication::applicationName().toStdString() << ": " << reason.toStdString() << '\n';
    return status;
}

int Simulator::run(const std::function<std::expected<void, QString>()>& start, Commands::Handler handler) {
    Commands commands(events_, patience_, std::move(handler));
    if (parser_.isSet(scriptOption())) {
        QFile script(parser_.value(scriptOption()));
        if (!script.open(QIODevice::ReadOnly)) {
            return fail(usageError, QStringLiteral("cannot read ") + script.fileName());
        }
        commands.add(QString::fromUtf8(script.readAll()).split(u'\n'));
    }
    if (const auto started = start(); !started) {
        return fail(startFailed, started.error());
    }
    commands.readStandardInput();
    return QCoreApplication::exec();
}

} // namespace quorvale::simulator
