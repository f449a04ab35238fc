#include "ui/logs/displayText.hpp"

#include "platform/text/Characters.hpp"

#include <QStringDecoder>

namespace quorvale::ui::logs {

namespace {

constexpr char32_t replacement = U'\uFFFD';

bool isWithin(char32_t character, char32_t first, char32_t last) {
    return character >= first && character <= last;
}

/// Zero-width joiners and variation selectors: without a shape of their own, but not without an effect.
bool shapesOthers(char32_t character) {
    return isWithin(character, U'\u200C', U'\u200D') || isWithin(character, U'\uFE00', U'\uFE0F') ||
           isWithin(character, U'\U000E0100', U'\U000E01EF');
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
    // The controls of direction are among them, and tags, which repeat ASCII unseen.
    const auto isUnseen = platform::text::isDefaultIgnorable(character) && !shapesOthers(character);
    // Annotations, and what stands for an object.
    const auto isSpecial = isWithin(character, U'\uFFF9', U'\uFFFC');
    return isControl || separatesLines || isUnseen || isSpecial ? replacement : character;
}

} // namespace

QString displayText(std::string_view utf8) {
    // Not QString's own conversion, which leaves out a byte order mark at the beginning.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(QByteArrayView(utf8.data(), static_cast<qsizetype>(utf8.size())));
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size()) {
            if (shown(QChar::surrogateToUcs4(text[i], text[i + 1])) == replacement) {
                text.replace(i, 2, QChar::ReplacementCharacter);
            } else {
                ++i;
            }
        } else {
            text[i] = QChar(static_cast<char16_t>(shown(text[i].unicode())));
        }
    }
    return text;
}

} // namespace quorvale::ui::logs
