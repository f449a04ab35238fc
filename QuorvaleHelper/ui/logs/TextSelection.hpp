#pragma once

#include "ui/logs/TextSegments.hpp"

#include <cstddef>
#include <string_view>

namespace quorvale::ui::logs {

/// What a person has selected of a text: from where the selection began to the caret, whichever comes first. Begun with
/// a word or a line, it holds whole ones. Offsets count the text's bytes and lie between characters.
class TextSelection {
public:
    enum class Unit { Character, Word, Line };

    /// Empty, at the text's beginning. `segments` outlives the selection.
    explicit TextSelection(const TextSegments& segments) : segments_(&segments) {}

    /// Selects the word or the line at `offset`, or nothing.
    void beginAt(std::size_t offset, Unit unit = Unit::Character);

    /// Selects up to `offset`, with the whole unit that is there.
    void extendTo(std::size_t offset);

    [[nodiscard]] std::size_t begin() const { return begin_; }

    [[nodiscard]] std::size_t end() const { return end_; }

    [[nodiscard]] std::size_t caret() const { return isCaretFirst_ ? begin_ : end_; }

    [[nodiscard]] bool isEmpty() const { return begin_ == end_; }

    /// What is selected, as it was logged.
    [[nodiscard]] std::string_view text() const { return segments_->text().substr(begin_, end_ - begin_); }

private:
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    [[nodiscard]] Range unitAround(std::size_t offset) const;

    const TextSegments* segments_;
    Unit unit_ = Unit::Character;
    Range origin_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool isCaretFirst_ = false;
};

} // namespace quorvale::ui::logs
