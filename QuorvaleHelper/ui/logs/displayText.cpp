#include "ui/logs/displayText.hpp"

#include "platform/text/Characters.hpp"

#include <QChar>

namespace quorvale::ui::logs {

namespace {

constexpr char32_t replacement = U'\uFFFD';

bool isWithin(char32_t character, char32_t first, char32_t last) {
    return character >= first && character <= last;
}

/// Zero-width joiners, variation selectors and soft hyphens: without a shape of their own, but not without an effect.
bool shapesOthers(char32_t character) {
    return character == U'\u00AD' || isWithin(character, U'\u200C', U'\u200D') ||
           isWithin(character, U'\uFE00', U'\uFE0F') || isWithin(character, U'\U000E0100', U'\U000E01EF');
}

char32_t shown(char32_t character) {
    if (character < 0x20) {
        return character == U'\t' ? character : U'\u2400' + character;
    }
    if (character < 0x7F) {
        return character;
    }
    if (character == 0x7F) {
        return U'\u2421';
    }
    const auto isControl = character < 0xA0;
    const auto separatesLines = isWithin(character, U'\u2028', U'\u2029');
    // The controls of direction are among them, and tags outside of flags, which repeat ASCII unseen.
    const auto isUnseen = platform::text::isDefaultIgnorable(character) && !shapesOthers(character);
    // Annotations, and what stands for an object.
    const auto isSpecial = isWithin(character, U'\uFFF9', U'\uFFFC');
    return isControl || separatesLines || isUnseen || isSpecial ? replacement : character;
}

constexpr char32_t flag = U'\U0001F3F4';
constexpr char32_t endOfTags = U'\U000E007F';

bool isTag(char32_t character) {
    return isWithin(character, U'\U000E0020', endOfTags);
}

/// Calls `visit` with each character as it is shown and with the place of its end, until that is false.
template <typename Visit>
void walk(std::string_view utf8, Visit visit) {
    // Tags say which flag it is (Unicode Technical Standard #51, emoji tag sequences).
    bool isInFlag = false;
    for (std::size_t end = 0; end < utf8.size();) {
        const auto scalar = platform::text::scalarAt(utf8, end);
        end += scalar.length;
        const bool isOfFlag = isInFlag && isTag(scalar.value);
        isInFlag = scalar.value == flag || (isOfFlag && scalar.value != endOfTags);
        if (!visit(isOfFlag ? scalar.value : shown(scalar.value), end)) {
            return;
        }
    }
}

int unitsOf(char32_t character) {
    return QChar::requiresSurrogates(character) ? 2 : 1;
}

} // namespace

QString displayText(std::string_view utf8) {
    QString text;
    text.reserve(static_cast<qsizetype>(utf8.size()));
    walk(utf8, [&](char32_t character, std::size_t /*end*/) {
        text.append(QChar::fromUcs4(character));
        return true;
    });
    return text;
}

int unitsShowing(std::string_view utf8, std::size_t bytes) {
    int units = 0;
    walk(utf8, [&](char32_t character, std::size_t end) {
        units += end <= bytes ? unitsOf(character) : 0;
        return end < bytes;
    });
    return units;
}

std::size_t bytesShownIn(std::string_view utf8, int units) {
    std::size_t bytes = 0;
    walk(utf8, [&](char32_t character, std::size_t end) {
        units -= unitsOf(character);
        bytes = units >= 0 ? end : bytes;
        return units > 0;
    });
    return bytes;
}

} // namespace quorvale::ui::logs
