#pragma once

#include "model/BlockedClass.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

namespace quorvale::model {

/// The cache of blocked connections. Held by `std::shared_ptr`; one thread at a time.
class BlockedCacheService {
public:
    BlockedCacheService() = default;
    BlockedCacheService(const BlockedCacheService&) = delete;
    BlockedCacheService& operator=(const BlockedCacheService&) = delete;

    /// By remote address or DNS name, never null; a connection may stand under several keys.
    std::unordered_map<std::string, std::shared_ptr<BlockedClass>> blockedMap;
    const std::int64_t blocksCacheSize = 1000; ///< in entries
    std::int64_t bytesBlocked = 0;             ///< running count of bytes blocked
};

} // namespace quorvale::model
