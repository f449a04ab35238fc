#include "agent_simulator/StateReply.hpp"

namespace quorvale::agent_simulator {

std::expected<StateReply, QString> StateReply::parse(const QString& words) {
    const auto word = words.section(u' ', 0, 0);
    const auto rest = words.section(u' ', 1);
    if (words.isEmpty()) {
        return std::unexpected(QStringLiteral("a state is missing"));
    }
    if (word == u"text") {
        return StateReply{.text = rest};
    }
    if (word == u"padded") {
        return StateReply{.text = rest.section(u' ', 1), .width = rest.section(u' ', 0, 0).toLongLong()};
    }
    if (word == u"bad") {
        return StateReply{.text = QStringLiteral("{\"active\":tru")};
    }
    if (word == u"none") {
        return StateReply{.kind = Kind::None};
    }
    if (word == u"several") {
        return StateReply{.kind = Kind::Several, .text = QStringLiteral("{\"active\":true}")};
    }
    if (word == u"wrong-type") {
        return StateReply{.kind = Kind::WrongType, .text = QStringLiteral("{\"active\":true}")};
    }
    if (word == u"never") {
        return StateReply{.kind = Kind::Never};
    }
    if (word == u"error") {
        const auto name = rest.section(u' ', 0, 0);
        const auto message = rest.section(u' ', 1);
        return StateReply{
            .kind = Kind::Error,
            .text = name.isEmpty() ? QStringLiteral("com.quorvale.Error.Failed") : name,
            .errorMessage = message.isEmpty() ? QStringLiteral("The agent was told to fail") : message,
        };
    }
    if (word == u"late") {
        auto reply = parse(rest);
        if (reply) {
            reply->moment = Moment::WhenTold;
        }
        return reply;
    }
    if (word == u"then") {
        const auto value = rest.section(u' ', 0, 0);
        if (value != u"true" && value != u"false") {
            return std::unexpected(QStringLiteral("then takes true or false, and a state"));
        }
        auto reply = parse(rest.section(u' ', 1));
        if (reply) {
            reply->thenPush = value == u"true";
        }
        return reply;
    }
    return StateReply{.text = words};
}

} // namespace quorvale::agent_simulator
