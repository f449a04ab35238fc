#include "platform/text/Characters.hpp"

#include <utf8proc.h>

#include <cstdint>

namespace quorvale::platform::text {

namespace {

constexpr char32_t replacement = U'\uFFFD';

bool isASCII(char32_t value) {
    return value < 0x80;
}

utf8proc_int32_t codepoint(char32_t value) {
    return static_cast<utf8proc_int32_t>(value);
}

} // namespace

// utf8proc's own reader doesn't tell where a maximal subpart ends: Unicode Standard, table 3-7.
Scalar scalarAt(std::string_view text, std::size_t offset) {
    const auto byte = [&](std::size_t index) { return char32_t{static_cast<std::uint8_t>(text[offset + index])}; };
    const auto continues = [&](std::size_t index) {
        return offset + index < text.size() && (byte(index) & 0xC0) == 0x80;
    };
    const auto bits = [&](std::size_t index) { return byte(index) & 0x3F; };
    const auto lead = byte(0);
    if (isASCII(lead)) {
        return {.value = lead, .length = 1};
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return {.value = replacement, .length = 1};
    }
    if (lead < 0xE0) {
        return continues(1) ? Scalar{.value = (lead & 0x1F) << 6 | bits(1), .length = 2}
                            : Scalar{.value = replacement, .length = 1};
    }
    if (lead < 0xF0) {
        if (!continues(1) || (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F)) {
            return {.value = replacement, .length = 1};
        }
        return continues(2) ? Scalar{.value = (lead & 0x0F) << 12 | bits(1) << 6 | bits(2), .length = 3}
                            : Scalar{.value = replacement, .length = 2};
    }
    if (!continues(1) || (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F)) {
        return {.value = replacement, .length = 1};
    }
    if (!continues(2)) {
        return {.value = replacement, .length = 2};
    }
    return continues(3) ? Scalar{.value = (lead & 0x07) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3), .length = 4}
                        : Scalar{.value = replacement, .length = 3};
}

namespace {

/// Whether there is always a break between this one and another plain one (rule GB999): it is neither a control nor any
/// of what the other rules are about. Asking this is faster than asking for a break.
bool isPlain(char32_t value) {
    return isASCII(value) ? value >= ' ' && value != 0x7F
                          : utf8proc_get_property(codepoint(value))->boundclass == UTF8PROC_BOUNDCLASS_OTHER;
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
        std::size_t passed = 0;
        auto end = offset_ + 1;
        while (limit - passed >= block && text_.size() - end >= block) {
            const auto begun = charactersBegunInBlock(end);
            if (begun == 0) {
                break;
            }
            passed += begun;
            end += block;
        }
        nextSkip_ = end + block;
        if (passed > 0) {
            // What follows may still belong to the last of them.
            const auto last = text_.substr(end - 2, 2) == "\r\n" ? end - 2 : end - 1;
            state_ = 0;
            left_ = Left::AfterBreak;
            begin(last);
        }
        return passed;
    }

private:
    static constexpr std::size_t block = 64;

    /// What is known of the scalar value before a possible break.
    enum class Left : std::uint8_t { Plain, AfterBreak, InCharacter };

    void begin(std::size_t offset) {
        offset_ = offset;
        if (!atEnd()) {
            first_ = scalarAt(text_, offset);
        }
    }

    bool breaksBetween(char32_t left, char32_t right) {
        const bool leftIsPlain = left_ == Left::Plain;
        if (leftIsPlain && isPlain(right)) {
            state_ = 0;
            return true;
        }
        // A copy, so that the compiler may keep the rest of the cursor in registers.
        auto state = state_;
        const bool breaks = utf8proc_grapheme_break_stateful(codepoint(left), codepoint(right), &state);
        state_ = state;
        // Where breaks don't follow each other, as between flags, asking for plainness is not worth it.
        const bool rightIsPlain = breaks && left_ == Left::AfterBreak && isPlain(right);
        left_ = rightIsPlain ? Left::Plain : breaks ? Left::AfterBreak : Left::InCharacter;
        return breaks;
    }

    /// None unless the block is all ASCII. In ASCII only CR LF is a character of more than one byte.
    [[nodiscard]] std::size_t charactersBegunInBlock(std::size_t offset) const {
        const auto* const bytes = text_.data() + offset;
        std::uint8_t all = 0;
        std::uint8_t lineEnds = 0;
        for (std::size_t index = 0; index < block; ++index) {
            all |= static_cast<std::uint8_t>(bytes[index]);
            lineEnds += static_cast<std::uint8_t>(static_cast<unsigned>(bytes[index] == '\n') &
                                                  static_cast<unsigned>(*(bytes + index - 1) == '\r'));
        }
        return isASCII(all) ? block - lineEnds : 0;
    }

    std::string_view text_;
    std::size_t offset_ = 0;
    Scalar first_{};         ///< the one at `offset_`
    std::int32_t state_ = 0; ///< of utf8proc; nothing that a rule could need is in it after a break between plain ones
    Left left_ = Left::AfterBreak;
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

std::size_t characterLength(std::string_view text) {
    Cursor cursor(text);
    if (!cursor.atEnd()) {
        cursor.next();
    }
    return cursor.offset();
}

bool isDefaultIgnorable(char32_t character) {
    return utf8proc_get_property(codepoint(character))->ignorable != 0;
}

} // namespace quorvale::platform::text
