#include "platform/log/UnifiedLog.hpp"

#include <algorithm>
#include <cstdlib>
#include <future>
#include <string>
#include <utility>

namespace quorvale::platform::log {

using namespace std::chrono_literals;

namespace {

/// How long the drain lets messages gather before it looks for more: under load one call of the output takes what was
/// written meanwhile, and nobody who writes has to wake the drain up.
constexpr auto gathering = 1ms;

/// A wait in one piece would be over once the process, stopped or short of processors, runs again, and the drain might
/// not have had its turn. Of short pieces, that takes one.
constexpr std::chrono::milliseconds pieceOfWait{10};

void flushShared() {
    UnifiedLog::shared().flush(UnifiedLog::longestFlushAtTheEnd);
}

} // namespace

UnifiedLog& UnifiedLog::shared() {
    static auto* const log = [] {
        // Without a place among the handlers, the last lines may be lost, and no more.
        [[maybe_unused]] const bool isFlushed = std::atexit(flushShared) == 0 && std::at_quick_exit(flushShared) == 0;
        return new UnifiedLog(systemOutput());
    }();
    return *log;
}

UnifiedLog::UnifiedLog(std::unique_ptr<Output> output, std::size_t budget)
    : store_(budget), output_(std::move(output)) {}

UnifiedLog::~UnifiedLog() {
    if (!output_) {
        return;
    }
    {
        const std::scoped_lock lock(mutex_);
        ++flushing_;
    }
    changed_.notify_all();
    // Behind a drain that is still at work.
    std::packaged_task<void()> last([this] { drain(); });
    const auto done = last.get_future();
    if (queue_.async(std::move(last))) {
        done.wait();
    } else {
        drain();
    }
}

void UnifiedLog::write(const Entry& entry) {
    store_.append(entry);
    if (output_) {
        startDrain();
    }
}

bool UnifiedLog::flush(std::chrono::milliseconds limit) {
    if (!output_) {
        return true;
    }
    const auto added = store_.added();
    const auto hasAll = [&] { return written_ >= added; };
    std::unique_lock lock(mutex_);
    if (hasAll()) {
        return true;
    }
    startDrain();
    ++flushing_;
    changed_.notify_all();
    for (auto left = limit; left > 0ms && !hasAll(); left -= pieceOfWait) {
        changed_.wait_for(lock, std::min(left, pieceOfWait), hasAll);
    }
    --flushing_;
    return hasAll();
}

void UnifiedLog::startDrain() {
    if (isDraining_ || isDraining_.exchange(true)) {
        return;
    }
    if (!queue_.async([this] { drain(); })) {
        isDraining_ = false;
    }
}

void UnifiedLog::drain() {
    do {
        while (writeUnread()) {
            letMessagesGather();
        }
        isDraining_ = false;
        // Whoever wrote just before that took the message for seen.
    } while (store_.added() != place_.passed() && !isDraining_.exchange(true));
}

bool UnifiedLog::writeUnread() {
    auto [lost, entries] = store_.unread(place_);
    if (entries.count() == 0) {
        return false;
    }
    entries.walk([this, &lost](const Entry& entry) {
        if (const auto count = std::exchange(lost, 0); count != 0) {
            const auto message = std::to_string(count) + " log lines were lost: they came faster than they were taken";
            output_->write({entry.date, Level::error, entry.identity, message});
        }
        output_->write(entry);
    });
    output_->flush();
    return true;
}

void UnifiedLog::letMessagesGather() {
    std::unique_lock lock(mutex_);
    written_ = place_.passed();
    changed_.notify_all();
    changed_.wait_for(lock, gathering, [this] { return flushing_ != 0; });
}

} // namespace quorvale::platform::log
