#pragma once

#include <cstdint>
#include <string>

namespace quorvale::model {

/// The store of events in the shared defaults. Held by `std::shared_ptr`; any thread.
class EventService {
public:
    EventService() = default;
    EventService(const EventService&) = delete;
    EventService& operator=(const EventService&) = delete;

    const std::int64_t limit = 1000;                ///< in events
    const std::string sharedDefaultsKey = "Events"; ///< the key under which it stores
};

} // namespace quorvale::model
