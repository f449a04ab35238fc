#include "platform/log/UnifiedLog.hpp"

#include <utility>

namespace quorvale::platform::log {

UnifiedLog& UnifiedLog::shared() {
    static auto* const log = new UnifiedLog(systemOutput());
    return *log;
}

UnifiedLog::UnifiedLog(std::unique_ptr<Output> output, std::size_t budget)
    : store_(budget), output_(std::move(output)) {}

void UnifiedLog::write(const Entry& entry, std::string_view format) {
    store_.append(entry);
    if (output_) {
        output_->write(entry, format);
    }
}

} // namespace quorvale::platform::log
