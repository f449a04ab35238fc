#pragma once

#include "platform/log/Logger.hpp"
#include "platform/observable/ObservableObject.hpp"
#include "ui/logs/DisplayDate.hpp"
#include "ui/logs/LogLines.hpp"
#include "ui/logs/LogReader.hpp"

#include <array>
#include <functional>
#include <memory>
#include <string>

namespace quorvale::ui::logs {

/// The helper's own recent log as display lines, "[11/16/2026, 3:47 PM] [category] message", oldest first. Main thread.
class LogStore final : public platform::observable::ObservableObject {
public:
    struct Collaborators {
        /// Whose messages are listed; names that differ in letter case are different ones.
        std::array<std::string, 3> subsystems;
        /// Takes the line about what failed.
        const platform::log::Logger& logger;
        std::unique_ptr<LogReader> reader;
        /// Asked at each load: people travel, and change their settings.
        std::function<DisplayDate()> displayDate = [] { return DisplayDate(); };
    };

    explicit LogStore(Collaborators collaborators) : collaborators_(std::move(collaborators)) {}

    /// Never null. Whoever shows the lines shares them; a list once published never changes.
    [[nodiscard]] const std::shared_ptr<const LogLines>& entries() const { return entries_.get(); }

    [[nodiscard]] const platform::log::Logger& logger() const { return collaborators_.logger; }

    /// Reads the log and replaces the list by what it says, in one change. If it can't be read, that is one error line
    /// and no change. Takes the calling thread until all is read.
    void loadEntries();

private:
    [[nodiscard]] std::expected<LogLines, LogError> read() const;

    Collaborators collaborators_;
    platform::observable::Published<std::shared_ptr<const LogLines>> entries_{*this,
                                                                              std::make_shared<const LogLines>()};
};

} // namespace quorvale::ui::logs
