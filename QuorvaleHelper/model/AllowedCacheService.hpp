#pragma once

#include "model/AllowedClass.hpp"

#include <memory>
#include <string>
#include <unordered_map>

namespace quorvale::model {

/// The cache of allowed connections. Held by `std::shared_ptr`; one thread at a time.
class AllowedCacheService {
public:
    AllowedCacheService() = default;
    AllowedCacheService(const AllowedCacheService&) = delete;
    AllowedCacheService& operator=(const AllowedCacheService&) = delete;

    /// By remote address or DNS name, never null; a connection may stand under several keys.
    std::unordered_map<std::string, std::shared_ptr<AllowedClass>> allowedMap;
};

} // namespace quorvale::model
