#include "ui/logs/TextSegments.hpp"

#include "platform/text/Characters.hpp"

#include <QChar>

#include <algorithm>
#include <optional>

namespace quorvale::ui::logs {

namespace {

constexpr std::size_t longest = TextSegments::longest;
constexpr std::size_t early = longest * 3 / 4;

bool isASCII(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool joinsNext(char32_t letter) {
    const auto type = QChar::joiningType(letter);
    return type == QChar::Joining_Dual || type == QChar::Joining_Left || type == QChar::Joining_Causing;
}

bool joinsPrevious(char32_t letter) {
    const auto type = QChar::joiningType(letter);
    return type == QChar::Joining_Dual || type == QChar::Joining_Right || type == QChar::Joining_Causing;
}

/// The last place to cut a line between two characters, if there is one that isn't too early: where letters have the
/// shapes on their own that they have side by side, unless it is all one piece of cursive writing, as Arabic may be.
std::optional<std::size_t> lastBreak(std::string_view line) {
    auto place = early;
    while (place < longest && continuesCharacter(line[place])) {
        ++place;
    }
    std::optional<std::size_t> joined;
    std::optional<std::size_t> apart;
    while (place <= longest) {
        const auto length = platform::text::characterLength(line.substr(place, longest));
        char32_t letter = 0;
        for (std::size_t at = place; at < place + length;) {
            const auto scalar = platform::text::scalarAt(line, at);
            letter = QChar::joiningType(scalar.value) == QChar::Joining_Transparent ? letter : scalar.value;
            at += scalar.length;
        }
        place += length;
        if (place <= longest) {
            const bool isJoined = joinsNext(letter) && joinsPrevious(platform::text::scalarAt(line, place).value);
            (isJoined ? joined : apart) = place;
        }
    }
    return apart ? apart : joined;
}

/// How many bytes of a line that is too long make its first piece.
std::size_t firstPiece(std::string_view line) {
    const auto piece = line.substr(0, longest);
    if (const auto space = piece.rfind(' '); space != std::string_view::npos && space >= early) {
        return space + 1;
    }
    if (isASCII(piece.back()) && isASCII(line[longest])) {
        return longest;
    }
    if (const auto place = lastBreak(line)) {
        return *place;
    }
    // All one character with its marks. A scalar value has three continuing bytes at most; more of them are no text.
    for (auto end = longest; end > longest - 4; --end) {
        if (!continuesCharacter(line[end])) {
            return end;
        }
    }
    return longest;
}

} // namespace

TextSegments::TextSegments(std::string_view text) : text_(text) {
    // For lines of usual length; room that stays unused takes no memory.
    starts_.reserve(text.size() / 64 + 1);
    std::size_t start = 0;
    while (true) {
        starts_.push_back(start);
        const auto feed = text.find('\n', start);
        const auto end = std::min(feed, text.size());
        while (end - start > longest) {
            start += firstPiece(text.substr(start, end - start));
            starts_.push_back(start);
        }
        if (feed == std::string_view::npos) {
            return;
        }
        start = feed + 1;
    }
}

std::string_view TextSegments::operator[](std::size_t index) const {
    return text_.substr(starts_[index], bytes(index) - (endsLine(index) ? 1 : 0));
}

std::size_t TextSegments::bytes(std::size_t index) const {
    return (index + 1 == starts_.size() ? text_.size() : starts_[index + 1]) - starts_[index];
}

std::size_t TextSegments::at(std::size_t offset) const {
    return static_cast<std::size_t>(std::ranges::upper_bound(starts_, offset) - starts_.begin()) - 1;
}

bool TextSegments::endsLine(std::size_t index) const {
    return index + 1 < starts_.size() && text_[starts_[index + 1] - 1] == '\n';
}

} // namespace quorvale::ui::logs
