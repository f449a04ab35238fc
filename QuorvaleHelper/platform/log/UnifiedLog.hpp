#pragma once

#include "platform/log/EntryStore.hpp"
#include "platform/log/Output.hpp"
#include "platform/queue/SerialQueue.hpp"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>

namespace quorvale::platform::log {

/// Where every log message of the process goes: into the store that can be read back, and to the output.
///
/// Nobody who writes a message waits for the output. A serial queue reads the store behind the writers and hands the
/// output what it has not had yet, in order, many messages at a time. So what may wait for a slow or stopped output is
/// bounded by the store's budget; what the store drops before that is lost to the output, and an error line in its
/// place says how many messages that were. What is still waiting when the process is killed or crashes is lost, too:
/// of a working output, that is what was written in the last millisecond or two.
class UnifiedLog {
public:
    /// The log of the process, with the system's output. Created on first use, any thread, and never destroyed:
    /// a connection's queue may still write while the process ends. `exit` and `quick_exit` flush it, `_Exit` doesn't.
    static UnifiedLog& shared();

    static constexpr std::chrono::milliseconds longestFlushAtTheEnd{500};

    /// Without an output, messages go to the store only.
    explicit UnifiedLog(std::unique_ptr<Output> output, std::size_t budget = EntryStore::defaultBudget);

    /// Waits until the output has had everything.
    ~UnifiedLog();

    UnifiedLog(const UnifiedLog&) = delete;
    UnifiedLog& operator=(const UnifiedLog&) = delete;

    /// Any thread; never waits for the output. Where the system has no thread left for the output, the message waits
    /// for the next one.
    void write(const Entry& entry);

    /// Waits until the output has had every message written before the call, but not longer than `limit`, in which the
    /// process's own standing still does not count; whether it has. Any thread but the output's.
    bool flush(std::chrono::milliseconds limit);

    EntryStore& store() { return store_; }

private:
    void startDrain();
    void drain();
    bool writeUnread();
    void letMessagesGather();

    EntryStore store_;
    const std::unique_ptr<Output> output_;
    EntryStore::Place place_; ///< The drain's.
    std::atomic<bool> isDraining_ = false;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint64_t written_ = 0; ///< How many messages the output has had, lost ones included.
    int flushing_ = 0;          ///< How many threads wait for that.

    queue::SerialQueue queue_;
};

} // namespace quorvale::platform::log
