#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace quorvale::ui::logs {

/// A text cut into pieces that are laid out one by one: its lines, and of a line that is too long for that, pieces of
/// it. So no single line, whatever a peer puts into it, costs more to show than another. Takes eight bytes a piece.
class TextSegments {
public:
    /// Bytes of the longest piece. A longer line is cut after a space, or else between two characters,
    /// if possible where letters that are written together aren't.
    static constexpr std::size_t longest = 2048;

    /// `text` is UTF-8, or any bytes, and outlives the segments.
    explicit TextSegments(std::string_view text);

    /// An empty text is one empty piece.
    [[nodiscard]] std::size_t size() const { return starts_.size(); }

    /// The bytes of a piece, without a line feed.
    [[nodiscard]] std::string_view operator[](std::size_t index) const;

    /// How many bytes that is, or one more if a line feed follows. Quicker to tell.
    [[nodiscard]] std::size_t bytes(std::size_t index) const;

    [[nodiscard]] std::string_view text() const { return text_; }

    /// Where in the text a piece begins, in bytes.
    [[nodiscard]] std::size_t start(std::size_t index) const { return starts_[index]; }

    /// The piece that a place of the text is in; the line feed at its end is.
    [[nodiscard]] std::size_t at(std::size_t offset) const;

    /// Whether a line feed follows the piece.
    [[nodiscard]] bool endsLine(std::size_t index) const;

private:
    std::string_view text_;
    std::vector<std::size_t> starts_;
};

} // namespace quorvale::ui::logs
