#pragma once

#include "support/Commands.hpp"
#include "support/EventWriter.hpp"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>

#include <expected>
#include <functional>

namespace quorvale::simulator {

/// What the simulators have in common: the command line, the events they write, the commands they read, and the exit
/// status. Made after the QCoreApplication.
class Simulator {
public:
    static constexpr int startFailed = 1;
    static constexpr int usageError = 2;

    struct Description {
        QString summary;
        /// Lines of two columns, and texts that explain them.
        QString commands;
        QString events;
        QList<QCommandLineOption> options = {};
    };

    /// Ends the process where the command line asks for help or is wrong.
    explicit Simulator(const Description& description);

    [[nodiscard]] QString value(const QCommandLineOption& option) const { return parser_.value(option); }

    [[nodiscard]] EventWriter& events() { return events_; }

    /// Says why on standard error, and returns `status`.
    static int fail(int status, const QString& reason);

    /// Starts, then obeys the commands; returns the exit status.
    int run(const std::function<std::expected<void, QString>()>& start, Commands::Handler handler);

private:
    QCommandLineParser parser_;
    EventWriter events_;
    std::chrono::seconds patience_ = {};
};

} // namespace quorvale::simulator
