#include "model/DigestHelpers.hpp"
#include "support/decoding.hpp"

#include <utf8proc.h>

#include <array>
#include <string>
#include <vector>

using namespace quorvale;

namespace {

/// The length of the well-formed sequence at the beginning of `bytes`, with its scalar value; 0 if there is none.
std::size_t wellFormedLength(std::string_view bytes, utf8proc_int32_t& scalar) {
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(bytes.data()),
                                         static_cast<utf8proc_ssize_t>(bytes.size()), &scalar);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

/// Whether some bytes after `begin` make it well-formed.
bool canBeCompleted(const std::string& begin) {
    utf8proc_int32_t scalar = 0;
    if (wellFormedLength(begin, scalar) == begin.size()) {
        return true;
    }
    constexpr std::array continuations{'\x80', '\x8F', '\x90', '\x9F', '\xA0', '\xBF'};
    return begin.size() < 4 &&
           std::ranges::any_of(continuations, [&begin](char byte) { return canBeCompleted(begin + byte); });
}

/// The characters of `text`, found by brute force where it is broken and by utf8proc alone where it is not.
std::vector<std::string> charactersOf(std::string_view text) {
    std::vector<std::string> characters;
    utf8proc_int32_t previous = 0;
    utf8proc_int32_t state = 0;
    while (!text.empty()) {
        utf8proc_int32_t scalar = 0;
        auto length = wellFormedLength(text, scalar);
        auto bytes = std::string(text.substr(0, length));
        if (length == 0) {
            scalar = 0xFFFD;
            bytes = "\uFFFD";
            length = 3;
            while (length > 1 && (length > text.size() || !canBeCompleted(std::string(text.substr(0, length))))) {
                --length;
            }
        }
        if (characters.empty() || utf8proc_grapheme_break_stateful(previous, scalar, &state)) {
            characters.emplace_back();
        }
        characters.back() += bytes;
        previous = scalar;
        text.remove_prefix(length);
    }
    return characters;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    const auto characters = charactersOf(text);
    const auto count = static_cast<std::int64_t>(characters.size());
    for (std::int64_t position = 0; position < count; position += 1 + count / 16) {
        fuzz::check(model::characterAt(position, text) == characters[static_cast<std::size_t>(position)]);
    }
    fuzz::check(count == 0 || model::characterAt(count - 1, text) == characters.back());
    fuzz::check(!model::characterAt(count, text));
    return 0;
}
