#include "ui/logs/TextSegments.hpp"

#include <algorithm>

namespace quorvale::ui::logs {

namespace {

constexpr bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// How many bytes of a line that is too long make its first piece.
std::size_t firstPiece(std::string_view line) {
    const auto piece = line.substr(0, TextSegments::longest);
    constexpr auto early = TextSegments::longest * 3 / 4;
    if (const auto space = piece.rfind(' '); space != std::string_view::npos && space >= early) {
        return space + 1;
    }
    // A character has three continuing bytes at most; more of them are no text.
    for (auto end = piece.size(); end > piece.size() - 4; --end) {
        if (!continuesCharacter(line[end])) {
            return end;
        }
    }
    return piece.size();
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
