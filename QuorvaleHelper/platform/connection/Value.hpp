#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quorvale::platform::connection {

struct PropertyList;

using Dictionary = std::map<std::string, PropertyList>;

/// A point in time, in seconds since 1970-01-01 00:00 UTC. On the bus: a structure of one double, `(d)`.
struct Date {
    double secondsSince1970 = 0;
    bool operator==(const Date&) const = default;
};

/// What a dictionary's values are made of. On the bus: `s`, any integer type that fits, `d`, `b`, `ay`, `(d)`, `av` (or
/// another array of these) and `a{sv}`.
struct PropertyList {
    std::variant<std::string, std::int64_t, double, bool, std::vector<std::byte>, Date, std::vector<PropertyList>,
                 Dictionary>
        value;
    bool operator==(const PropertyList&) const = default;
};

/// What a message carries: an argument or a reply. On the bus, in the order of the alternatives: `s`, `b`, `d`,
/// `a{sv}`, and `as` with no or one string.
using Value = std::variant<std::string, bool, double, Dictionary, std::optional<std::string>>;

/// The alternatives of `Value`, in their order.
enum class Type : std::uint8_t { text, boolean, number, dictionary, optionalText };

} // namespace quorvale::platform::connection
