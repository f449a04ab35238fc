#include "agent_simulator/Commands.hpp"

#include <QCoreApplication>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <string>
#include <unistd.h>

namespace quorvale::agent_simulator {

namespace {

QStringList wordsOf(const QString& line) {
    QStringList words;
    std::istringstream stream(line.toStdString());
    for (std::string word; stream >> std::quoted(word, '\'');) {
        words.append(QString::fromStdString(word));
    }
    return words;
}

} // namespace

Commands::Commands(Agent& agent, EventWriter& events, std::chrono::milliseconds patience)
    : agent_(agent), events_(events), input_(QSocketNotifier::Read) {
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
    const auto command = trimmed.section(u' ', 0, 0);
    const auto rest = trimmed.section(u' ', 1);
    std::expected<void, QString> done;
    const auto push = [&](Agent::Sender sender, const QStringList& words) {
        if (words.isEmpty() || !ClientCall::isMethod(words.first())) {
            done = std::unexpected(QStringLiteral("unknown command: ") + trimmed);
        } else if (const auto call = ClientCall::parse(words.first(), words.mid(1)); !call) {
            done = std::unexpected(call.error());
        } else {
            done = agent_.push(sender, *call);
        }
    };
    if (command == u"state") {
        if (auto reply = StateReply::parse(rest)) {
            agent_.setStateReply(*std::move(reply));
        } else {
            done = std::unexpected(reply.error());
        }
    } else if (command == u"answer") {
        agent_.answerHeld();
    } else if (command == u"impostor") {
        push(Agent::Sender::Impostor, wordsOf(rest));
    } else if (command == u"clients") {
        events_.write(QStringList(QStringLiteral("clients")) + agent_.clients());
    } else if (command == u"release") {
        agent_.releaseName();
    } else if (command == u"acquire") {
        done = agent_.acquireName();
    } else if (command == u"restart") {
        agent_.stop();
        done = agent_.start();
    } else if (command == u"await") {
        awaited_ = rest;
        patience_.start();
        for (const auto& event : std::exchange(unseenEvents_, {})) {
            noteEvent(event);
        }
    } else if (command == u"quit") {
        QCoreApplication::exit(exitStatus_);
    } else if (command == u"crash") {
        std::abort();
    } else {
        push(Agent::Sender::Agent, wordsOf(trimmed));
    }
    if (!done) {
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
    if (awaited_.isEmpty()) {
        unseenEvents_.append(event);
    } else if (event.startsWith(awaited_)) {
        awaited_.clear();
        patience_.stop();
        QMetaObject::invokeMethod(this, [this] { obeyWaiting(); }, Qt::QueuedConnection);
    }
}

} // namespace quorvale::agent_simulator
