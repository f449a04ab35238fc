#pragma once

#include "platform/log/EntryStore.hpp"
#include "ui/logs/LogReader.hpp"

namespace quorvale::ui::logs {

/// Reads the store in which the process keeps its own log messages. Never fails.
class UnifiedLogReader final : public LogReader {
public:
    explicit UnifiedLogReader(const platform::log::EntryStore& store) : store_(store) {}

    std::expected<void, LogError> open() override;
    std::expected<Entries, LogError> entries(std::chrono::duration<double> sinceLatestBoot) override;

private:
    const platform::log::EntryStore& store_;
};

} // namespace quorvale::ui::logs
