#pragma once

#include "platform/queue/SerialQueue.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace quorvale::model {

/// The store of geography data in the shared defaults. Held by `std::shared_ptr`; any thread.
class GeoIpRepository {
public:
    GeoIpRepository() = default;
    GeoIpRepository(const GeoIpRepository&) = delete;
    GeoIpRepository& operator=(const GeoIpRepository&) = delete;

    const std::string sharedDefaultsKey = "GeoIpData"; ///< the key under which it stores
    const std::int64_t limit = 1000;                   ///< in entries
    /// For its storage work, one piece at a time. Never null.
    const std::shared_ptr<platform::queue::SerialQueue> geoStorageQueue =
        std::make_shared<platform::queue::SerialQueue>();
};

} // namespace quorvale::model
