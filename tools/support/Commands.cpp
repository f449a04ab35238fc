#include "support/Commands.hpp"

#include <QCoreApplication>

#include <array>
#include <cerrno>
#include <csignal>
#include <unistd.h>
#include <utility>

namespace quorvale::simulator {

Commands::Commands(EventWriter& events, std::chrono::milliseconds patience, Handler handler)
    : events_(events), handler_(std::move(handler)), input_(QSocketNotifier::Read) {
    patience_.setSingleShot(true);
    patience_.setInterval(patience);
    QObject::connect(&patience_, &QTimer::timeout, this, [this] {
        fail(QStringLiteral("no event begins with: ") + awaited_);
        QCoreApplication::exit(exitStatus_);
    });
    QObject::connect(&input_, &QSocketNotifier::activated, this, &Commands::readInput);
    events_.observe([this](const QString& event) { noteEvent(event); });
}

void Commands::add(const QStringList& lines) {
    waiting_.append(lines);
    QMetaObject::invokeMethod(this, [this] { obeyWaiting(); }, Qt::QueuedConnection);
}

void Commands::readStandardInput() {
    input_.setSocket(STDIN_FILENO);
    input_.setEnabled(true);
}

void Commands::obeyWaiting() {
    while (awaited_.isEmpty() && !waiting_.isEmpty()) {
        obey(waiting_.takeFirst());
    }
}

void Commands::obey(const QString& line) {
    const auto trimmed = line.trimmed();
    if (trimmed.isEmpty() || trimmed.startsWith(u'#')) {
        return;
    }
    // Written first: its reader then finds the command obeyed in whatever it sends next, on the bus too.
    events_.write({QStringLiteral("obeys"), trimmed});
    const auto word = trimmed.section(u' ', 0, 0);
    const auto rest = trimmed.section(u' ', 1);
    if (word == u"await") {
        awaited_ = rest;
        patience_.start();
        for (const auto& event : std::exchange(unseenEvents_, {})) {
            noteEvent(event);
        }
    } else if (word == u"quit") {
        QCoreApplication::exit(exitStatus_);
    } else if (word == u"crash") {
        deadly_ = rest;
        if (rest.isEmpty()) {
            std::raise(SIGKILL);
        }
    } else if (const auto done = handler_(word, rest); !done) {
        fail(done.error());
    }
}

void Commands::fail(const QString& reason) {
    exitStatus_ = commandFailed;
    events_.write({QStringLiteral("command-failed"), reason});
}

void Commands::readInput() {
    std::array<char, 4096> buffer{};
    const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (count <= 0) {
        input_.setEnabled(false);
        return;
    }
    partial_.append(buffer.data(), count);
    auto lines = partial_.split('\n');
    partial_ = lines.takeLast();
    for (const auto& line : lines) {
        waiting_.append(QString::fromUtf8(line));
    }
    obeyWaiting();
}

void Commands::noteEvent(const QString& event) {
    if (!deadly_.isEmpty() && event.startsWith(deadly_)) {
        std::raise(SIGKILL);
    }
    if (awaited_.isEmpty()) {
        unseenEvents_.append(event);
    } else if (event.startsWith(awaited_)) {
        awaited_.clear();
        patience_.stop();
        QMetaObject::invokeMethod(this, [this] { obeyWaiting(); }, Qt::QueuedConnection);
    }
}

} // namespace quorvale::simulator
