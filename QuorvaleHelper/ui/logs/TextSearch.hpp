#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorvale::ui::logs {

/// Finds what a person looks for in a text of many megabytes: the same bytes, or, ignoring case, the same characters by
/// Unicode's simple case folding. Places are bytes. Matches don't overlap when they are found one after the other.
class TextSearch {
public:
    enum class Case { Ignored, Matched };

    struct Match {
        std::size_t begin;
        std::size_t end;

        bool operator==(const Match&) const = default;
    };

    /// `wanted` is UTF-8, or any bytes. Nothing is found by an empty one.
    explicit TextSearch(std::string_view wanted = {}, Case letters = Case::Matched);

    [[nodiscard]] bool isEmpty() const { return wanted_.empty(); }

    /// The first match that begins at `from` or later.
    [[nodiscard]] std::optional<Match> next(std::string_view text, std::size_t from) const;

    /// The last match that begins before `before`.
    [[nodiscard]] std::optional<Match> previous(std::string_view text, std::size_t before) const;

    [[nodiscard]] std::size_t count(std::string_view text) const;

    /// How many bytes a match can have.
    [[nodiscard]] std::size_t longest() const { return folded_.empty() ? wanted_.size() : 4 * folded_.size(); }

private:
    [[nodiscard]] std::optional<std::size_t> endOfMatchAt(std::string_view text, std::size_t begin) const;

    std::string wanted_;
    std::u32string folded_;          ///< of `wanted_`; empty when case counts
    std::array<bool, 256> begins_{}; ///< whether a match may begin with that byte
};

} // namespace quorvale::ui::logs
