#pragma once

#include "platform/json/JSONDecoder.hpp"
#include "support/check.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <string_view>

namespace quorvale::fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Any text becomes a record, or an error that is fit for a log.
template <typename Record>
std::expected<Record, platform::json::DecodingError> decode(std::string_view text) {
    auto record = platform::json::JSONDecoder{}.decode<Record>(text);
    if (!record) {
        check(std::ranges::all_of(record.error().description(), [](char c) { return c >= ' ' && c <= '~'; }));
    }
    return record;
}

} // namespace quorvale::fuzz
