#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string_view>

namespace quorvale::platform::json {

// The numbers of a JSON text as they are written. A parser gives some of them rounded, and others not at all.

/// Whether the whole text is a number (RFC 8259, section 6).
bool isNumber(std::string_view text);

/// What a text begins with: a string, a run of the characters of numbers, or all up to the next of these. Of valid
/// JSON, the pieces that are numbers are its numbers.
std::string_view firstPiece(std::string_view text);

/// The number of a valid JSON text that has `count` others before it.
std::string_view numberAfter(std::size_t count, std::string_view text);

enum class NotAnInteger : std::uint8_t { IsNotWhole, IsOutOfRange };

/// The exact value of a number, with or without a fraction part and an exponent (7.0, 70e-1), as a signed 64-bit
/// integer.
std::expected<std::int64_t, NotAnInteger> integerOf(std::string_view number);

} // namespace quorvale::platform::json
