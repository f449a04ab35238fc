#include "model/DigestHelpers.hpp"

#include "platform/digest/Digest.hpp"
#include "platform/text/Characters.hpp"

#include <array>
#include <cstddef>

namespace quorvale::model {

namespace {

template <std::size_t Size>
std::string hexadecimal(const std::array<std::uint8_t, Size>& bytes) {
    // Computed rather than looked up, and in place, so that the compiler does many at once: for a short text this is a
    // good part of the digest's time.
    const auto digit = [](unsigned value) { return static_cast<char>(value + (value < 10 ? '0' : 'a' - 10)); };
    std::string text;
    text.resize_and_overwrite(2 * Size, [&](char* digits, std::size_t count) {
        for (std::size_t index = 0; index < Size; ++index) {
            digits[2 * index] = digit(bytes[index] >> 4U);
            digits[2 * index + 1] = digit(bytes[index] & 0xFU);
        }
        return count;
    });
    return text;
}

} // namespace

std::string md5Hex(std::string_view text) {
    return hexadecimal(platform::digest::md5(text));
}

std::string sha256Hex(std::string_view text) {
    return hexadecimal(platform::digest::sha256(text));
}

std::optional<std::string> characterAt(std::int64_t position, std::string_view text) {
    if (position < 0) {
        return std::nullopt;
    }
    return platform::text::characterAt(static_cast<std::size_t>(position), text);
}

} // namespace quorvale::model
