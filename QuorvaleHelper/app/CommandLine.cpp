#include "app/CommandLine.hpp"

#include "app/HelperIdentity.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace quorvale::app {

namespace {

struct ToolkitOption {
    std::string_view name;
    bool hasValue = true;
};

/// Those that mean something to a program without a main window (https://doc.qt.io/qt-6/qguiapplication.html and
/// https://doc.qt.io/qt-6/qapplication.html, "Supported Command Line Options").
constexpr std::array toolkitOptions{
    ToolkitOption{"display"}, ToolkitOption{"platform"},      ToolkitOption{"platformpluginpath"},
    ToolkitOption{"plugin"},  ToolkitOption{"platformtheme"}, ToolkitOption{"reverse", false},
    ToolkitOption{"session"}, ToolkitOption{"style"},         ToolkitOption{"stylesheet"},
};

/// How many arguments a toolkit's option takes, itself included; 0 if it is none.
std::size_t toolkitsShare(std::string_view argument) {
    if (!argument.starts_with('-')) {
        return 0;
    }
    argument.remove_prefix(argument.starts_with("--") ? 2 : 1);
    if (argument.starts_with("style=") || argument.starts_with("stylesheet=")) {
        return 1;
    }
    const auto* const option = std::ranges::find(toolkitOptions, argument, &ToolkitOption::name);
    if (option == toolkitOptions.end()) {
        return 0;
    }
    return option->hasValue ? 2 : 1;
}

} // namespace

std::expected<CommandLine, std::string> CommandLine::parse(std::span<char* const> arguments) {
    CommandLine line;
    for (std::size_t at = 1; at < arguments.size();) {
        const std::string_view argument = arguments[at];
        if (argument == "--help" || argument == "--version") {
            line.request = argument == "--help" ? Request::help : Request::version;
            return line;
        }
        if (argument == "--background") {
            line.background = true;
            ++at;
        } else if (const auto share = toolkitsShare(argument); share != 0) {
            at += share;
        } else {
            return std::unexpected(std::string(argument));
        }
    }
    return line;
}

std::string helpText() {
    return "Usage: QuorvaleHelper [OPTION...]\n"
           "Shows in the desktop's panel whether network protection is on. It runs once per\n"
           "session: a further start has the one that runs show its window.\n"
           "\n"
           "  --background  leave one that already runs alone\n"
           "  --help        print this text\n"
           "  --version     print the version\n"
           "\n"
           "The toolkit's options, such as -platform and -style, are taken as well.\n";
}

std::string versionText() {
    return "QuorvaleHelper " + appVersion() + " (" + buildNumber() + ")\n";
}

} // namespace quorvale::app
