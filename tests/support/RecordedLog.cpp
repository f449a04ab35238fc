#include "support/RecordedLog.hpp"

#include <algorithm>

namespace quorvale::tests {

std::vector<std::string> RecordedLog::lines() const {
    std::vector<std::string> lines;
    log_.store().snapshot().walk([&](const platform::log::Entry& entry) {
        const auto* const prefix = entry.level == platform::log::Level::error ? "error: " : "";
        lines.push_back(prefix + std::string(entry.composedMessage));
    });
    return lines;
}

std::ptrdiff_t RecordedLog::count(std::string_view line) const {
    return std::ranges::count(lines(), line);
}

} // namespace quorvale::tests
