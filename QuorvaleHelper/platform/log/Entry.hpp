#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace quorvale::platform::log {

enum class Level { info, error };

/// Whose lines these are. `subsystem` is a reverse-DNS name, `category` a word of its own choosing.
struct Identity {
    std::string subsystem;
    std::string category;

    bool operator==(const Identity&) const = default;
};

/// One log message. The texts belong to whoever hands the entry out.
struct Entry {
    std::chrono::system_clock::time_point date;
    Level level;
    const Identity& identity;
    /// The message with its arguments already substituted. It may hold what a peer sent, so any bytes at all.
    std::string_view composedMessage;
    /// What the message was composed from: a literal, it lives as long as the process.
    const char* format = "";
};

} // namespace quorvale::platform::log
