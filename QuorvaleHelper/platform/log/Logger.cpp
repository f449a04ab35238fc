#include "platform/log/Logger.hpp"

#include <utility>

namespace quorvale::platform::log {

namespace {

void append(std::string& text, const Placeholder& placeholder, const Argument& argument) {
    if (const auto* const boolean = std::get_if<bool>(&argument)) {
        text += *boolean ? "true" : "false";
    } else if (placeholder.isPrivate) {
        text += "<private>";
    } else {
        text += std::get<std::string_view>(argument);
    }
}

void compose(std::string& text, std::string_view format, std::span<const Argument> arguments) {
    text.clear();
    auto next = arguments.begin();
    while (true) {
        const auto percent = format.find('%');
        text += format.substr(0, percent);
        if (percent == std::string_view::npos) {
            return;
        }
        format.remove_prefix(percent);
        const auto& placeholder = *placeholderAt(format);
        append(text, placeholder, *next++);
        format.remove_prefix(placeholder.spelling.size());
    }
}

} // namespace

Logger::Logger(std::string subsystem, std::string category, UnifiedLog& log)
    : log_(log), identity_(log.store().identity({std::move(subsystem), std::move(category)})) {}

void Logger::write(Level level, const char* format, std::span<const Argument> arguments) const {
    std::string text;
    compose(text, format, arguments);
    log_.write({std::chrono::system_clock::now(), level, identity_, text, format});
}

} // namespace quorvale::platform::log
