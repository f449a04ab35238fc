#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvale::model {

// All of these: any thread, no state.

/// The MD5 digest (RFC 1321) of the text's bytes as they stand, in 32 lower-case hexadecimal digits. It tells texts
/// apart and protects nothing, so it is to be had where the system forbids MD5 for security.
std::string md5Hex(std::string_view text);

/// The SHA-256 digest (FIPS 180-4) of the text's bytes as they stand, in 64 lower-case hexadecimal digits.
std::string sha256Hex(std::string_view text);

/// The character at `position`, counted from 0; none where the text has no such position. A character is an extended
/// grapheme cluster of Unicode Standard Annex #29. Bytes that are not well-formed UTF-8 are read, counted and given as
/// U+FFFD (see `platform::text::characterAt`). Linear in the text up to the end of that character.
std::optional<std::string> characterAt(std::int64_t position, std::string_view text);

} // namespace quorvale::model
