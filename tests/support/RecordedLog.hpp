#pragma once

#include "platform/log/Logger.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace quorvale::tests {

/// A unified log of the test's own, with a logger that writes to it.
class RecordedLog {
public:
    /// The messages so far, oldest first; an error's begins with "error: ".
    [[nodiscard]] std::vector<std::string> lines() const;

    /// How many of the messages are `line`.
    [[nodiscard]] std::ptrdiff_t count(std::string_view line) const;

    [[nodiscard]] const platform::log::Logger& logger() const { return logger_; }

private:
    mutable platform::log::UnifiedLog log_{nullptr};
    platform::log::Logger logger_{"com.quorvale.QuorvaleHelper", "default", log_};
};

} // namespace quorvale::tests
