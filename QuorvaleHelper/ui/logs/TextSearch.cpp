#include "ui/logs/TextSearch.hpp"

#include "platform/text/Characters.hpp"

#include <QChar>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace quorvale::ui::logs {

using platform::text::Scalar;
using platform::text::scalarAt;

namespace {

constexpr char32_t replacement = U'\uFFFD';
constexpr std::size_t backwardsBlock = std::size_t{64} << 10;

constexpr std::size_t index(char byte) {
    return static_cast<std::uint8_t>(byte);
}

char32_t folded(char32_t character) {
    if (character < 0x80) {
        return character >= U'A' && character <= U'Z' ? character + (U'a' - U'A') : character;
    }
    return QChar::toCaseFolded(character);
}

/// Each character that folding changes, with what it becomes. Found once, in a few milliseconds, as Qt can't be asked
/// which characters fold to one; kept, they take 12 kilobytes.
const std::vector<std::pair<char32_t, char32_t>>& foldings() {
    static const auto all = [] {
        std::vector<std::pair<char32_t, char32_t>> changed;
        for (char32_t character = 0; character <= QChar::LastValidCodePoint; ++character) {
            if (const auto fold = folded(character); fold != character) {
                changed.emplace_back(character, fold);
            }
        }
        changed.shrink_to_fit();
        return changed;
    }();
    return all;
}

/// The first byte of a character's UTF-8.
std::size_t firstByte(char32_t character) {
    return character < 0x80      ? character
           : character < 0x800   ? 0xC0 | character >> 6
           : character < 0x10000 ? 0xE0 | character >> 12
                                 : 0xF0 | character >> 18;
}

} // namespace

TextSearch::TextSearch(std::string_view wanted, Case letters) : wanted_(wanted) {
    if (letters == Case::Matched || wanted.empty()) {
        return;
    }
    for (std::size_t at = 0; at < wanted.size();) {
        const auto scalar = scalarAt(wanted, at);
        at += scalar.length;
        folded_ += folded(scalar.value);
    }
    begins_[firstByte(folded_.front())] = true;
    for (const auto& [character, fold] : foldings()) {
        if (fold == folded_.front()) {
            begins_[firstByte(character)] = true;
        }
    }
    if (folded_.front() == replacement) {
        // Which bytes are no text depends on what follows them.
        std::fill(begins_.begin() + 0x80, begins_.end(), true);
    }
}

std::optional<TextSearch::Match> TextSearch::next(std::string_view text, std::size_t from) const {
    if (wanted_.empty() || from > text.size()) {
        return std::nullopt;
    }
    if (folded_.empty()) {
        const auto* const found = ::memmem(text.data() + from, text.size() - from, wanted_.data(), wanted_.size());
        if (!found) {
            return std::nullopt;
        }
        const auto begin = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
        return Match{begin, begin + wanted_.size()};
    }
    for (auto begin = from; begin < text.size(); ++begin) {
        if (!begins_[index(text[begin])]) {
            continue;
        }
        if (const auto end = endOfMatchAt(text, begin)) {
            return Match{begin, *end};
        }
    }
    return std::nullopt;
}

std::optional<TextSearch::Match> TextSearch::previous(std::string_view text, std::size_t before) const {
    for (auto end = std::min(before, text.size()); end > 0;) {
        const auto begin = end - std::min(end, backwardsBlock);
        std::optional<Match> last;
        for (auto match = next(text, begin); match && match->begin < end; match = next(text, match->begin + 1)) {
            last = match;
        }
        if (last) {
            return last;
        }
        end = begin;
    }
    return std::nullopt;
}

std::size_t TextSearch::count(std::string_view text) const {
    std::size_t count = 0;
    for (auto match = next(text, 0); match; match = next(text, match->end)) {
        ++count;
    }
    return count;
}

std::optional<std::size_t> TextSearch::endOfMatchAt(std::string_view text, std::size_t begin) const {
    for (const auto wanted : folded_) {
        if (begin == text.size()) {
            return std::nullopt;
        }
        const auto scalar =
            index(text[begin]) < 0x80 ? Scalar{static_cast<char32_t>(text[begin]), 1} : scalarAt(text, begin);
        if (folded(scalar.value) != wanted) {
            return std::nullopt;
        }
        begin += scalar.length;
    }
    return begin;
}

} // namespace quorvale::ui::logs
