#pragma once

#include "model/ThreatType.hpp"

#include <optional>
#include <string>

namespace quorvale::model {

/// One blocked connection. Held by `std::shared_ptr`, so that a change made by one holder is seen by all; one thread
/// at a time.
class BlockedClass {
public:
    BlockedClass(ThreatType category, std::optional<std::string> name, std::optional<std::string> land,
                 std::string address);

    BlockedClass(const BlockedClass&) = delete;
    BlockedClass& operator=(const BlockedClass&) = delete;

    ThreatType type;                    ///< the category for which it was blocked
    std::optional<std::string> host;    ///< absent when not known
    std::optional<std::string> country; ///< absent when not known
    std::string ipAddress;              ///< the remote address, as text
};

} // namespace quorvale::model
