#include "logs/SampleLog.hpp"

#include "ui/logs/UnifiedLogReader.hpp"

#include <array>
#include <chrono>
#include <string_view>

namespace quorvale::bench {

namespace {

constexpr std::string_view subsystem = "com.quorvale.QuorvaleHelper";
constexpr auto budget = std::size_t{1} << 30;

constexpr std::array<std::string_view, 4> messages{
    "Received notification: true",
    "Helper XPC: Connection to the agent was interrupted; the next notification brings it back",
    "Helper XPC: Initial State Changed: true",
    "Failed to decode the updater's notification: the key \"running\" isn't there (coding path: top level), "
    "and nothing else happens",
};

} // namespace

SampleLog::SampleLog(std::size_t count)
    : log(nullptr, budget),
      logger(std::string(subsystem), "default", log),
      lines({.subsystems = {std::string(subsystem), "another", "a third"},
             .logger = logger,
             .reader = std::make_unique<ui::logs::UnifiedLogReader>(log.store())}) {
    const auto& identity = log.store().identity({std::string(subsystem), "default"});
    const auto start = std::chrono::sys_days(std::chrono::year(2026) / 1 / 1);
    for (std::size_t i = 0; i < count; ++i) {
        log.store().append({start + std::chrono::seconds(10 * i), platform::log::Level::info, identity,
                            messages[i % messages.size()]});
    }
}

} // namespace quorvale::bench
