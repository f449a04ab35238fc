#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace quorvale::ui::logs {

/// A list of lines that lie in memory as one text, so that joining a million of them costs nothing. A line is any
/// bytes, line feeds among them.
class LogLines {
public:
    /// Makes room for that many lines with that many bytes between them.
    void reserve(std::size_t lines, std::size_t bytes);

    /// Adds one line, made of `parts`.
    void append(std::initializer_list<std::string_view> parts);

    [[nodiscard]] std::size_t size() const { return ends_.size(); }

    [[nodiscard]] std::string_view operator[](std::size_t index) const;

    /// All lines with a line feed between neighbours and none at the end.
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    std::string text_;
    std::vector<std::size_t> ends_;
};

} // namespace quorvale::ui::logs
