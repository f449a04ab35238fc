#include "ui/logs/UnifiedLogReader.hpp"

#include <utility>

namespace quorvale::ui::logs {

std::expected<void, LogError> UnifiedLogReader::open() {
    return {};
}

// A process starts after its machine, so any position near the boot is the store's beginning.
std::expected<LogReader::Entries, LogError>
UnifiedLogReader::entries(std::chrono::duration<double> /*sinceLatestBoot*/) {
    auto snapshot = store_.snapshot();
    return Entries{.count = snapshot.count(),
                   .messageBytes = snapshot.messageBytes(),
                   .walk = [snapshot = std::move(snapshot)](const auto& visit) { snapshot.walk(visit); }};
}

} // namespace quorvale::ui::logs
