#pragma once

#include "platform/log/Entry.hpp"

#include <chrono>
#include <cstddef>
#include <expected>
#include <functional>
#include <string>

namespace quorvale::ui::logs {

/// Why a log can't be read, for a person.
struct LogError {
    std::string localizedDescription;
};

/// Reads back the log messages of the calling process. Main thread.
class LogReader {
public:
    struct Entries {
        std::size_t count;
        std::size_t messageBytes; ///< of all messages together
        /// Calls its argument with each entry, oldest first.
        std::function<void(const std::function<void(const platform::log::Entry&)>&)> walk;
    };

    virtual ~LogReader() = default;

    /// Opens the log of the current process, as the first step of each read.
    virtual std::expected<void, LogError> open() = 0;

    /// All entries from that long after the latest boot onwards.
    virtual std::expected<Entries, LogError> entries(std::chrono::duration<double> sinceLatestBoot) = 0;
};

} // namespace quorvale::ui::logs
