#include "ui/logs/TextSelection.hpp"

#include "ui/logs/displayText.hpp"
#include "ui/logs/rangeAround.hpp"

#include <algorithm>

namespace quorvale::ui::logs {

void TextSelection::beginAt(std::size_t offset, Unit unit) {
    unit_ = unit;
    origin_ = unitAround(offset);
    begin_ = origin_.begin;
    end_ = origin_.end;
    isCaretFirst_ = false;
}

void TextSelection::extendTo(std::size_t offset) {
    const auto reached = unitAround(offset);
    begin_ = std::min(origin_.begin, reached.begin);
    end_ = std::max(origin_.end, reached.end);
    isCaretFirst_ = reached.begin < origin_.begin;
}

TextSelection::Range TextSelection::unitAround(std::size_t offset) const {
    const auto text = segments_->text();
    switch (unit_) {
    case Unit::Character:
        break;
    case Unit::Word: {
        const auto segment = segments_->at(offset);
        const auto bytes = (*segments_)[segment];
        const auto start = segments_->start(segment);
        const auto [from, to] =
            rangeAround(displayText(bytes), unitsShowing(bytes, offset - start), QTextBoundaryFinder::Word);
        return {start + bytesShownIn(bytes, from), start + bytesShownIn(bytes, to)};
    }
    case Unit::Line: {
        const auto before = offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
        const auto feed = text.find('\n', offset);
        return {before == std::string_view::npos ? 0 : before + 1, feed == std::string_view::npos ? text.size() : feed};
    }
    }
    return {offset, offset};
}

} // namespace quorvale::ui::logs
