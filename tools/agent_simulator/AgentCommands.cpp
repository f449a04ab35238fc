#include "agent_simulator/AgentCommands.hpp"

#include <iomanip>
#include <sstream>
#include <string>
#include <utility>

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

std::expected<void, QString> AgentCommands::obey(const QString& word, const QString& rest) {
    if (word == u"state") {
        auto reply = StateReply::parse(rest);
        if (!reply) {
            return std::unexpected(reply.error());
        }
        agent_.setStateReply(*std::move(reply));
    } else if (word == u"answer") {
        agent_.answerHeld();
    } else if (word == u"impostor") {
        return push(Agent::Sender::Impostor, rest);
    } else if (word == u"flood") {
        const auto order = Flood::Order::parse(rest.section(u'@', 0, 0).trimmed());
        if (!order) {
            return std::unexpected(order.error());
        }
        return agent_.flood(*order, rest.section(u'@', 1));
    } else if (word == u"clients") {
        events_.write(QStringList(QStringLiteral("clients")) + agent_.clients());
    } else if (word == u"release") {
        agent_.releaseName();
    } else if (word == u"acquire") {
        return agent_.acquireName();
    } else if (word == u"restart") {
        agent_.stop();
        return agent_.start();
    } else {
        return push(Agent::Sender::Agent, word + u' ' + rest);
    }
    return {};
}

std::expected<void, QString> AgentCommands::push(Agent::Sender sender, const QString& line) {
    const auto words = wordsOf(line);
    if (words.isEmpty() || !ClientCall::isMethod(words.first())) {
        return std::unexpected(QStringLiteral("unknown command: ") + line);
    }
    const auto call = ClientCall::parse(words.first(), words.mid(1));
    if (!call) {
        return std::unexpected(call.error());
    }
    return agent_.push(sender, *call);
}

} // namespace quorvale::agent_simulator
