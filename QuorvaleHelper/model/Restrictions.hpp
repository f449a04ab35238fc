#pragma once

#include "platform/json/Decoder.hpp"
#include "platform/json/DecodingError.hpp"
#include "platform/json/Encoder.hpp"

#include <array>
#include <cstdint>
#include <expected>
#include <memory>
#include <string_view>

namespace quorvale::model {

/// What the user may not change, a JSON object:
/// {"training":false,"geographyLock":true,"allowLock":false,"denyLock":false}.
struct Restrictions {
    enum class CodingKeys : std::uint8_t { training, geographyLock, allowLock, denyLock };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"training", "geographyLock", "allowLock", "denyLock"});
    }

    constexpr Restrictions(bool isTraining, bool isGeographyLocked, bool isAllowLocked, bool isDenyLocked)
        : training(isTraining), geographyLock(isGeographyLocked), allowLock(isAllowLocked), denyLock(isDenyLocked) {}

    constexpr Restrictions(const Restrictions&) = default;

    /// The record is replaced as a whole: its members never change.
    constexpr Restrictions& operator=(const Restrictions& other) {
        if (this != &other) {
            std::construct_at(this, other);
        }
        return *this;
    }

    const bool training;      ///< training mode is on
    const bool geographyLock; ///< the geography rules are locked
    const bool allowLock;     ///< the allow rules are locked
    const bool denyLock;      ///< the deny rules are locked

    static std::expected<Restrictions, platform::json::DecodingError> decode(const platform::json::Decoder& decoder);
    void encode(platform::json::Encoder& encoder) const;
};

} // namespace quorvale::model
