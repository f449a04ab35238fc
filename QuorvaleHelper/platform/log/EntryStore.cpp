#include "platform/log/EntryStore.hpp"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace quorvale::platform::log {

namespace {

/// Lies before each message's bytes.
struct Header {
    std::chrono::system_clock::time_point date;
    const Identity* identity;
    std::size_t length;
    Level level;
};

constexpr std::size_t largestChunk = std::size_t{256} << 10;

} // namespace

EntryStore::Chunk::Chunk(std::size_t size) : bytes(std::make_unique_for_overwrite<std::byte[]>(size)), capacity(size) {}

EntryStore::EntryStore(std::size_t budget) : budget_(budget), chunkSize_(std::min(budget / 16, largestChunk)) {}

const Identity& EntryStore::identity(Identity identity) {
    const std::scoped_lock lock(mutex_);
    const auto known = std::ranges::find(identities_, identity);
    return known != identities_.end() ? *known : identities_.emplace_back(std::move(identity));
}

void EntryStore::append(const Entry& entry) {
    const Header header{entry.date, &entry.identity, entry.composedMessage.size(), entry.level};
    const std::scoped_lock lock(mutex_);
    if (auto* const place = reserve(sizeof header + header.length)) {
        std::memcpy(place, &header, sizeof header);
        std::ranges::copy(std::as_bytes(std::span(entry.composedMessage)), place + sizeof header);
    }
}

std::byte* EntryStore::reserve(std::size_t size) {
    if (size > budget_) {
        return nullptr;
    }
    if (chunks_.empty() || chunks_.back()->capacity - chunks_.back()->used < size) {
        const auto capacity = std::max(size, chunkSize_);
        while (reserved_ + capacity > budget_) {
            reserved_ -= chunks_.front()->capacity;
            chunks_.pop_front();
        }
        chunks_.push_back(std::make_shared<Chunk>(capacity));
        reserved_ += capacity;
    }
    auto& chunk = *chunks_.back();
    ++chunk.count;
    return chunk.bytes.get() + std::exchange(chunk.used, chunk.used + size);
}

EntryStore::Snapshot EntryStore::snapshot() const {
    Snapshot snapshot;
    const std::scoped_lock lock(mutex_);
    snapshot.chunks_.reserve(chunks_.size());
    for (const auto& chunk : chunks_) {
        snapshot.chunks_.push_back({chunk, chunk->used});
        snapshot.count_ += chunk->count;
        snapshot.messageBytes_ += chunk->used - chunk->count * sizeof(Header);
    }
    return snapshot;
}

void EntryStore::Snapshot::walk(const std::function<void(const Entry&)>& visit) const {
    for (const auto& [chunk, used] : chunks_) {
        for (std::size_t at = 0; at < used;) {
            Header header;
            std::memcpy(&header, chunk->bytes.get() + at, sizeof header);
            at += sizeof header;
            visit({header.date,
                   header.level,
                   *header.identity,
                   {reinterpret_cast<const char*>(chunk->bytes.get() + at), header.length}});
            at += header.length;
        }
    }
}

} // namespace quorvale::platform::log
