#pragma once

#include "platform/json/Decoder.hpp"
#include "platform/json/DecodingError.hpp"

#include <array>
#include <cstdint>
#include <expected>
#include <string_view>

namespace quorvale::model {

/// Where a rule came from.
enum class RuleSource : std::uint8_t { defaultItem, localSetting, managedSetting };

} // namespace quorvale::model

namespace quorvale::platform::json {

/// A JSON object in which just one of the keys is the name of a case and holds an object: {"localSetting":{}}.
/// Other keys are ignored, there and in the inner object. Only read here, never written.
template <>
struct Coding<model::RuleSource> {
    enum class CodingKeys : std::uint8_t { defaultItem, localSetting, managedSetting };
    enum class DefaultItemCodingKeys : std::uint8_t {};
    enum class LocalSettingCodingKeys : std::uint8_t {};
    enum class ManagedSettingCodingKeys : std::uint8_t {};

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"defaultItem", "localSetting", "managedSetting"});
    }

    friend constexpr std::array<std::string_view, 0> codingKeyNames(DefaultItemCodingKeys /*keys*/) { return {}; }

    friend constexpr std::array<std::string_view, 0> codingKeyNames(LocalSettingCodingKeys /*keys*/) { return {}; }

    friend constexpr std::array<std::string_view, 0> codingKeyNames(ManagedSettingCodingKeys /*keys*/) { return {}; }

    static std::expected<model::RuleSource, DecodingError> decode(const Decoder& decoder);
};

} // namespace quorvale::platform::json
