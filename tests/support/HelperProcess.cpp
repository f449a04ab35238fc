#include "support/HelperProcess.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorvale::tests {

namespace {

constexpr std::string_view identity = " com.quorvale.QuorvaleHelper default ";

std::string quoted(std::string_view text) {
    std::string result = "'";
    result += text;
    return result + "'";
}

std::vector<std::string> withHelper(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), QUORVALE_STAGED_HELPER);
    return arguments;
}

} // namespace

HelperProcess::HelperProcess(const PrivateBus& systemBus, const PrivateBus& sessionBus,
                             const std::vector<std::string>& arguments)
    : HelperProcess(Environment{{"DBUS_SYSTEM_BUS_ADDRESS", systemBus.address()},
                                {"DBUS_SESSION_BUS_ADDRESS", sessionBus.address()},
                                {"QT_QPA_PLATFORM", "offscreen"}},
                    arguments) {}

HelperProcess::HelperProcess(const Environment& environment, const std::vector<std::string>& arguments)
    : environment_(environment),
      process_({.program = QUORVALE_SCRIPTS "/without_journal",
                .arguments = withHelper(arguments),
                .environment = environment,
                .errorOutput = Process::ErrorOutput::Merged}) {}

bool HelperProcess::logs(std::string_view text) {
    return waitUntil([&] {
        const auto lines = log();
        return std::ranges::find(lines, text) != lines.end();
    });
}

std::vector<std::string> HelperProcess::log() const {
    std::vector<std::string> lines;
    for (const auto& line : process_.lines()) {
        // What the toolkit has to say about the machine is not of the log.
        if (const auto at = line.find(identity); at != std::string::npos) {
            lines.push_back(line.substr(at + identity.size()));
        }
    }
    return lines;
}

void HelperProcess::notify(std::string_view appState) const {
    Process gdbus({.program = "gdbus",
                   .arguments = {"emit", "--session", "--object-path", "/com/quorvale/Updater", "--signal",
                                 "com.quorvale.DistributedNotification.QuorvaleHelper", quoted(appState)},
                   .environment = environment_});
    EXPECT_EQ(gdbus.waitForExit(), Process::Exit{});
}

} // namespace quorvale::tests
