#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quorvale::platform::digest {

// Any thread; each thread keeps a little working memory per algorithm. Both throw std::runtime_error where the library
// can't compute them, which takes a lack of memory.

/// The MD5 digest (RFC 1321), also where the system's policy keeps MD5 from uses that need security.
std::array<std::uint8_t, 16> md5(std::string_view bytes);

/// The SHA-256 digest (FIPS 180-4).
std::array<std::uint8_t, 32> sha256(std::string_view bytes);

} // namespace quorvale::platform::digest
