#include "platform/text/Characters.hpp"

#include <utf8proc.h>

#include <cstdint>

namespace quorvale::platform::text {

namespace {

constexpr std::int32_t replacement = 0xFFFD;

struct Scalar {
    std::int32_t value;
    std::size_t length; ///< in bytes
};

bool isASCII(std::int32_t value) {
    return value < 0x80;
}

/// The scalar value that begins at `offset`; U+FFFD for a maximal subpart of an ill-formed subsequence (Unicode
/// Standard, table 3-7). utf8proc's own reader doesn't tell where such a subpart ends.
Scalar scalarAt(std::string_view text, std::size_t offset) {
    const auto byte = [&](std::size_t index) { return std::int32_t{static_cast<std::uint8_t>(text[offset + index])}; };
    const auto lead = byte(0);
    if (isASCII(lead)) {
        return {.value = lead, .length = 1};
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return {.value = replacement, .length = 1};
    }
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    auto lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    auto highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    auto value = lead & (0x7F >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if (offset + index == text.size() || byte(index) < lowest || byte(index) > highest) {
            return {.value = replacement, .length = index};
        }
        value = value << 6 | (byte(index) & 0x3F);
        lowest = 0x80;
        highest = 0xBF;
    }
    return {.value = value, .length = length};
}

/// Walks a text from one character to the next.
class Cursor {
public:
    explicit Cursor(std::string_view text) : text_(text) { begin(0); }

    [[nodiscard]] bool atEnd() const { return offset_ == text_.size(); }

    [[nodiscard]] std::size_t offset() const { return offset_; }

    void next() {
        auto end = offset_ + first_.length;
        for (auto previous = first_.value; end < text_.size();) {
            const auto scalar = scalarAt(text_, end);
            if (breaksBetween(previous, scalar.value)) {
                offset_ = end;
                first_ = scalar;
                return;
            }
            previous = scalar.value;
            end += scalar.length;
        }
        offset_ = end;
    }

    /// Goes on by up to `limit` characters as long as they are ASCII, many at once; the number of characters passed.
    std::size_t skipASCII(std::size_t limit) {
        if (offset_ < nextSkip_) {
            return 0;
        }
        std::size_t begun = 0;
        auto end = offset_;
        while (limit - begun >= block && text_.size() - end >= block) {
            const auto inside = charactersBegunInBlock(end);
            if (inside == 0) {
                break;
            }
            begun += inside;
            end += block;
        }
        nextSkip_ = end + block;
        if (begun == 0) {
            return 0;
        }
        // What follows may still belong to the last of them.
        --end;
        if (text_[end] == '\n' && end > offset_ && text_[end - 1] == '\r') {
            --end;
        }
        state_ = 0;
        begin(end);
        return begun - 1;
    }

private:
    static constexpr std::size_t block = 64;

    void begin(std::size_t offset) {
        offset_ = offset;
        if (!atEnd()) {
            first_ = scalarAt(text_, offset);
        }
    }

    bool breaksBetween(std::int32_t left, std::int32_t right) {
        if (isASCII(left) && isASCII(right)) {
            // Whatever came before, ASCII leaves no state that the next rule could need.
            state_ = 0;
            return left != '\r' || right != '\n';
        }
        return utf8proc_grapheme_break_stateful(left, right, &state_);
    }

    /// None unless the block is all ASCII. In ASCII only CR LF is a character of more than one byte.
    [[nodiscard]] std::size_t charactersBegunInBlock(std::size_t offset) const {
        const auto* const bytes = text_.data() + offset;
        std::uint8_t all = 0;
        std::uint8_t lineFeeds = offset > offset_ && bytes[0] == '\n' && bytes[-1] == '\r' ? 1 : 0;
        for (std::size_t index = 0; index < block; ++index) {
            all |= static_cast<std::uint8_t>(bytes[index]);
        }
        for (std::size_t index = 1; index < block; ++index) {
            lineFeeds += static_cast<std::uint8_t>(bytes[index] == '\n' && bytes[index - 1] == '\r');
        }
        return isASCII(all) ? block - lineFeeds : 0;
    }

    std::string_view text_;
    std::size_t offset_ = 0;
    Scalar first_{}; ///< the one at `offset_`
    std::int32_t state_ = 0;
    std::size_t nextSkip_ = 0; ///< where a block of ASCII is worth looking for again
};

std::string wellFormed(std::string_view character) {
    std::string text;
    for (std::size_t offset = 0; offset < character.size();) {
        const auto scalar = scalarAt(character, offset);
        text += scalar.value == replacement ? "\xEF\xBF\xBD" : character.substr(offset, scalar.length);
        offset += scalar.length;
    }
    return text;
}

} // namespace

std::optional<std::string> characterAt(std::size_t position, std::string_view text) {
    Cursor cursor(text);
    while (position > 0 && !cursor.atEnd()) {
        if (const auto skipped = cursor.skipASCII(position); skipped > 0) {
            position -= skipped;
        } else {
            cursor.next();
            --position;
        }
    }
    if (cursor.atEnd()) {
        return std::nullopt;
    }
    const auto begin = cursor.offset();
    cursor.next();
    return wellFormed(text.substr(begin, cursor.offset() - begin));
}

} // namespace quorvale::platform::text
