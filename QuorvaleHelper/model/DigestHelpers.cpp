#include "model/DigestHelpers.hpp"

#include "platform/digest/Digest.hpp"
#include "platform/text/Characters.hpp"

#include <cstddef>
#include <span>

namespace quorvale::model {

namespace {

std::string hexadecimal(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text(2 * bytes.size(), '\0');
    for (auto place = text.begin(); const auto byte : bytes) {
        *place++ = digits[byte >> 4U];
        *place++ = digits[byte & 0xFU];
    }
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
