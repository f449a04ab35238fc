#pragma once

#include "platform/log/Entry.hpp"
#include "platform/log/FormatString.hpp"
#include "platform/log/UnifiedLog.hpp"

#include <span>
#include <string>
#include <type_traits>

namespace quorvale::platform::log {

/// Writes messages under one subsystem and category. Any thread.
class Logger {
public:
    Logger(std::string subsystem, std::string category, UnifiedLog& log = UnifiedLog::shared());

    /// Progress and life cycle.
    template <typename... Arguments>
    void info(FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) const {
        write(Level::info, format.text(), std::array<Argument, sizeof...(Arguments)>{argument(arguments)...});
    }

    /// Failures.
    template <typename... Arguments>
    void error(FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) const {
        write(Level::error, format.text(), std::array<Argument, sizeof...(Arguments)>{argument(arguments)...});
    }

private:
    void write(Level level, const char* format, std::span<const Argument> arguments) const;

    UnifiedLog& log_;
    const Identity& identity_;
};

} // namespace quorvale::platform::log
