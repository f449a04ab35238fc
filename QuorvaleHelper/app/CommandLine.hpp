#pragma once

#include <expected>
#include <span>
#include <string>

namespace quorvale::app {

/// What the program is asked for with its arguments. They are read before there is a toolkit, which would need a
/// display to tell its own from the others.
struct CommandLine {
    enum class Request {
        run,
        help,
        version,
    };

    Request request = Request::run;
    /// Whether one that already runs is to be left alone.
    bool background = false;

    bool operator==(const CommandLine&) const = default;

    /// `arguments` are those of `main`, the program's name first. An argument that nobody knows is the error. The first
    /// request for a text goes before all that follows it.
    static std::expected<CommandLine, std::string> parse(std::span<char* const> arguments);
};

/// What "--help" prints.
std::string helpText();

/// What "--version" prints.
std::string versionText();

} // namespace quorvale::app
