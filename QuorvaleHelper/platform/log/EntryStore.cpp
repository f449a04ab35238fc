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
    const char* format;
    std::uint32_t length;
    Level level;
};

constexpr std::size_t largestChunk = std::size_t{256} << 10;

} // namespace

EntryStore::Chunk::Chunk(std::size_t size, std::uint64_t before)
    : bytes(std::make_unique_for_overwrite<std::byte[]>(size)), capacity(size), first(before) {}

EntryStore::EntryStore(std::size_t budget) : budget_(budget), chunkSize_(std::min(budget / 16, largestChunk)) {}

const Identity& EntryStore::identity(Identity identity) {
    const std::scoped_lock lock(mutex_);
    const auto known = std::ranges::find(identities_, identity);
    return known != identities_.end() ? *known : identities_.emplace_back(std::move(identity));
}

void EntryStore::append(const Entry& entry) {
    const auto length = entry.composedMessage.size();
    const Header header{entry.date, &entry.identity, entry.format, static_cast<std::uint32_t>(length), entry.level};
    const std::scoped_lock lock(mutex_);
    if (auto* const place = reserve(sizeof header + length)) {
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
        const auto first = end();
        while (reserved_ + capacity > budget_) {
            reserved_ -= chunks_.front()->capacity;
            chunks_.pop_front();
        }
        chunks_.push_back(std::make_shared<Chunk>(capacity, first));
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
        snapshot.chunks_.push_back({chunk, 0, chunk->used});
        snapshot.count_ += chunk->count;
        snapshot.messageBytes_ += chunk->used - chunk->count * sizeof(Header);
    }
    return snapshot;
}

EntryStore::Unread EntryStore::unread(Place& place) const {
    Unread unread;
    const std::scoped_lock lock(mutex_);
    if (!place.chunk_ || place.used_ == place.chunk_->used) {
        const auto next =
            std::ranges::lower_bound(chunks_, place.passed_, {}, [](const auto& chunk) { return chunk->first; });
        if (next == chunks_.end()) {
            return unread;
        }
        unread.lost = (*next)->first - place.passed_;
        place.chunk_ = *next;
        place.used_ = 0;
        place.passed_ = place.chunk_->first;
    }
    const auto& chunk = place.chunk_;
    auto& entries = unread.entries;
    entries.chunks_.push_back({chunk, place.used_, chunk->used});
    entries.count_ = static_cast<std::size_t>(chunk->first + chunk->count - place.passed_);
    entries.messageBytes_ = chunk->used - place.used_ - entries.count_ * sizeof(Header);
    place.used_ = chunk->used;
    place.passed_ += entries.count_;
    return unread;
}

std::uint64_t EntryStore::added() const {
    const std::scoped_lock lock(mutex_);
    return end();
}

std::uint64_t EntryStore::end() const {
    return chunks_.empty() ? 0 : chunks_.back()->first + chunks_.back()->count;
}

void EntryStore::Snapshot::walk(const std::function<void(const Entry&)>& visit) const {
    for (const auto& [chunk, from, used] : chunks_) {
        for (std::size_t at = from; at < used;) {
            Header header;
            std::memcpy(&header, chunk->bytes.get() + at, sizeof header);
            at += sizeof header;
            visit({header.date,
                   header.level,
                   *header.identity,
                   {reinterpret_cast<const char*>(chunk->bytes.get() + at), header.length},
                   header.format});
            at += header.length;
        }
    }
}

} // namespace quorvale::platform::log
