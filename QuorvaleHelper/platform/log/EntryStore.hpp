#pragma once

#include "platform/log/Entry.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace quorvale::platform::log {

/// This process's log messages, kept in memory for reading back: the newest ones, within a budget of bytes.
///
/// Entries lie one behind the other in chunks that are never changed below what is written, and the oldest chunks
/// are dropped as a whole when a new one would exceed the budget. A chunk is a sixteenth of the budget, at most
/// 256 KiB; an entry that alone exceeds that gets a chunk of its own size, and one that alone exceeds the budget is
/// not kept. An entry that doesn't fit into what is left of a chunk leaves that unused. So a full store of short
/// entries lacks little more than a chunk of its budget; one of entries longer than half a chunk may lack half.
class EntryStore {
public:
    static constexpr std::size_t defaultBudget = std::size_t{64} << 20;

    /// `budget` is in bytes, less than 4 GiB, and counts messages and bookkeeping.
    explicit EntryStore(std::size_t budget = defaultBudget);

    /// The one stored copy of an identity; it lives as long as the store. Any thread.
    const Identity& identity(Identity identity);

    /// Adds a message. `identity` is one of this store's. Any thread; waits for other writers, never for a walk.
    void append(const Entry& entry);

    class Snapshot;

    /// What there is now. Any thread; holds writers up only while it counts the chunks.
    [[nodiscard]] Snapshot snapshot() const;

    class Place;
    struct Unread;

    /// The entries from `place` on, as many as one chunk holds, and moves `place` behind them. Any thread, but one at a
    /// time for each place. So that a reader who is slow keeps no more than a chunk from being dropped.
    [[nodiscard]] Unread unread(Place& place) const;

    /// How many entries have been added so far, dropped ones included. Any thread.
    [[nodiscard]] std::uint64_t added() const;

private:
    struct Chunk {
        Chunk(std::size_t capacity, std::uint64_t first);

        std::unique_ptr<std::byte[]> bytes;
        std::size_t capacity;
        /// How many entries were added before this chunk's.
        std::uint64_t first;
        std::size_t used = 0;
        std::size_t count = 0;
    };

    std::byte* reserve(std::size_t size);
    [[nodiscard]] std::uint64_t end() const;

    const std::size_t budget_;
    const std::size_t chunkSize_;
    mutable std::mutex mutex_;
    std::deque<std::shared_ptr<Chunk>> chunks_;
    std::size_t reserved_ = 0;
    std::deque<Identity> identities_;
};

/// The entries of one moment. Copying it copies no entry; what the store drops meanwhile stays in memory as long as a
/// snapshot has it. The store outlives it.
class EntryStore::Snapshot {
public:
    /// Calls `visit` with every entry, oldest first, whatever is written meanwhile. Any thread.
    void walk(const std::function<void(const Entry&)>& visit) const;

    [[nodiscard]] std::size_t count() const { return count_; }

    /// The bytes of all messages together.
    [[nodiscard]] std::size_t messageBytes() const { return messageBytes_; }

private:
    friend EntryStore;

    struct Seen {
        std::shared_ptr<const Chunk> chunk;
        std::size_t from;
        std::size_t used;
    };

    std::vector<Seen> chunks_;
    std::size_t count_ = 0;
    std::size_t messageBytes_ = 0;
};

/// Where a reader is who goes through the entries while they are added; a new one is before the first entry.
class EntryStore::Place {
public:
    /// How many entries lie before it.
    [[nodiscard]] std::uint64_t passed() const { return passed_; }

private:
    friend EntryStore;

    std::shared_ptr<const Chunk> chunk_;
    std::size_t used_ = 0;
    std::uint64_t passed_ = 0;
};

struct EntryStore::Unread {
    /// How many entries the store dropped unread; they come before the others.
    std::uint64_t lost = 0;
    Snapshot entries;
};

} // namespace quorvale::platform::log
