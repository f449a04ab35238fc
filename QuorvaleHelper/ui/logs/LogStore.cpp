#include "ui/logs/LogStore.hpp"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace quorvale::ui::logs {

namespace {

using platform::log::Entry;

constexpr std::chrono::duration<double> afterBoot{1.0};

/// Tells which entries are listed and what follows their dates. Neighbours mostly have one identity, so what was found
/// for the last one is kept.
class Filter {
public:
    explicit Filter(const std::array<std::string, 3>& subsystems) : subsystems_(subsystems) {}

    bool passes(const Entry& entry) {
        if (&entry.identity != identity_) {
            identity_ = &entry.identity;
            passes_ = std::ranges::find(subsystems_, identity_->subsystem) != subsystems_.end();
            category_ = "] [" + identity_->category + "] ";
        }
        return passes_;
    }

    /// The category, between the ends of the brackets around it, of the entry asked about last.
    [[nodiscard]] std::string_view category() const { return category_; }

private:
    const std::array<std::string, 3>& subsystems_;
    const platform::log::Identity* identity_ = nullptr;
    bool passes_ = false;
    std::string category_;
};

} // namespace

void LogStore::loadEntries() {
    auto lines = read();
    if (!lines) {
        collaborators_.logger.error("%{public}s", lines.error().localizedDescription);
        return;
    }
    entries_.set(std::make_shared<const LogLines>(*std::move(lines)));
}

std::expected<LogLines, LogError> LogStore::read() const {
    if (auto opened = collaborators_.reader->open(); !opened) {
        return std::unexpected(std::move(opened).error());
    }
    auto entries = collaborators_.reader->entries(afterBoot);
    if (!entries) {
        return std::unexpected(std::move(entries).error());
    }

    // A text that grows as it is filled would take up to three times its memory on the way. Room that stays unused
    // takes none.
    constexpr std::size_t dateAndCategory = 64;
    LogLines lines;
    lines.reserve(entries->count, entries->messageBytes + entries->count * dateAndCategory);
    Filter filter(collaborators_.subsystems);
    auto date = collaborators_.displayDate();
    entries->walk([&](const Entry& entry) {
        if (filter.passes(entry)) {
            lines.append({"[", date.text(entry.date), filter.category(), entry.composedMessage});
        }
    });
    return lines;
}

} // namespace quorvale::ui::logs
