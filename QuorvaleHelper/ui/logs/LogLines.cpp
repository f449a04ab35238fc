#include "ui/logs/LogLines.hpp"

namespace quorvale::ui::logs {

void LogLines::reserve(std::size_t lines, std::size_t bytes) {
    text_.reserve(bytes + lines);
    ends_.reserve(lines);
}

void LogLines::append(std::initializer_list<std::string_view> parts) {
    if (!ends_.empty()) {
        text_ += '\n';
    }
    for (const auto part : parts) {
        text_ += part;
    }
    ends_.push_back(text_.size());
}

std::string_view LogLines::operator[](std::size_t index) const {
    const auto start = index == 0 ? 0 : ends_[index - 1] + 1;
    return std::string_view(text_).substr(start, ends_[index] - start);
}

} // namespace quorvale::ui::logs
