#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

namespace quorvale::platform::json {

/// A key set of a coded record: an enumeration of the record whose cases count up from 0, and beside it a
/// friend `codingKeyNames` that gives the array of their names in the same order.
///
///     enum class CodingKeys : std::uint8_t { active };
///     friend constexpr auto codingKeyNames(CodingKeys) { return std::to_array<std::string_view>({"active"}); }
///
/// A key set without keys gives `std::array<std::string_view, 0>`.
template <typename Key>
concept CodingKeySet = std::is_enum_v<Key> && requires {
    { codingKeyNames(Key{}).size() } -> std::convertible_to<std::size_t>;
};

template <CodingKeySet Key>
inline constexpr auto codingKeyTexts = codingKeyNames(Key{});

template <CodingKeySet Key>
constexpr std::string_view stringValue(Key key) {
    return codingKeyTexts<Key>[static_cast<std::size_t>(key)];
}

/// The key of exactly that text, case-sensitively.
template <CodingKeySet Key>
constexpr std::optional<Key> keyOfStringValue(std::string_view text) {
    const auto found = std::ranges::find(codingKeyTexts<Key>, text);
    if (found == codingKeyTexts<Key>.end()) {
        return std::nullopt;
    }
    return static_cast<Key>(found - codingKeyTexts<Key>.begin());
}

/// Keys have no integer form: none, always.
template <CodingKeySet Key>
constexpr std::optional<std::int64_t> intValue(Key /*key*/) {
    return std::nullopt;
}

/// Keys have no integer form: none, always.
template <CodingKeySet Key>
constexpr std::optional<Key> keyOfIntValue(std::int64_t /*value*/) {
    return std::nullopt;
}

} // namespace quorvale::platform::json
