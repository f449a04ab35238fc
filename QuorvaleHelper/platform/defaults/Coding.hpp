#pragma once

#include "platform/connection/Value.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace quorvale::platform::defaults {

/// What a suite holds, by key.
using Entries = connection::Dictionary;

/// The entries as one map in CBOR (RFC 8949): texts, integers, doubles, booleans, byte strings, dates as doubles under
/// tag 1, arrays and maps. None where a text is not well-formed UTF-8 or a value nests in 256 or more others.
std::optional<std::string> encode(const Entries& entries);

/// What `encode` wrote; none for anything else, which may be any bytes.
std::optional<Entries> decode(std::string_view bytes);

} // namespace quorvale::platform::defaults
