#pragma once

#include <QString>

#include <expected>
#include <optional>

namespace quorvale::agent_simulator {

/// How the agent answers `agentState`.
struct StateReply {
    enum class Kind {
        Text,
        /// An empty array: the agent has no state to tell.
        None,
        /// Two strings where at most one is allowed.
        Several,
        /// A string where an array of strings belongs.
        WrongType,
        Error,
        Never,
    };
    enum class Moment {
        AtOnce,
        /// When the command `answer` comes.
        WhenTold,
    };

    Kind kind = Kind::Text;
    Moment moment = Moment::AtOnce;
    /// The state's text, or the error's name.
    QString text = {};
    /// The characters that the text has at least; blanks follow it.
    qsizetype width = 0;
    QString errorMessage = {};
    /// The protection status to push at once after the answer.
    std::optional<bool> thenPush = {};

    static constexpr auto help =
        "  TEXT                  the text, such as {\"active\":true}\n"
        "  text TEXT             the same for a text that begins with one of the following words\n"
        "  padded COUNT TEXT     the text and blanks behind it, COUNT characters\n"
        "  none                  no text\n"
        "  bad                   text that is no JSON\n"
        "  several               two texts, which the interface forbids\n"
        "  wrong-type            a string instead of an array\n"
        "  error [NAME [TEXT]]   a D-Bus error\n"
        "  late REPLY            REPLY, but only when the command \"answer\" comes\n"
        "  then true|false REPLY REPLY, followed at once by updateProtectionStatus with that value\n"
        "  never                 no answer at all\n";

    /// The reply that `words` describe, or what is wrong with them.
    static std::expected<StateReply, QString> parse(const QString& words);
};

} // namespace quorvale::agent_simulator
