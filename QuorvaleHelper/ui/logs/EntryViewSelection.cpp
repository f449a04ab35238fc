// How a person selects text in the list.

#include "ui/common/localized.hpp"
#include "ui/logs/EntryView.hpp"
#include "ui/logs/EntryViewAccessible.hpp"
#include "ui/logs/displayText.hpp"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QTextCharFormat>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace quorvale::ui::logs {

namespace {

/// Milliseconds between two steps while the mouse is held outside of the list.
constexpr int dragScrollInterval = 50;

void give(std::string_view text, QClipboard::Mode mode) {
    auto* const data = new QMimeData;
    // As UTF-8: made a string, it would take twice the memory while it is kept.
    data->setData(QStringLiteral("text/plain"), {text.data(), static_cast<qsizetype>(text.size())});
    QApplication::clipboard()->setMimeData(data, mode);
}

} // namespace

EntryView::Position EntryView::positionOf(std::size_t offset) const {
    const auto segment = segments_.at(offset);
    return {segment, unitsShowing(segments_[segment], offset - segments_.start(segment))};
}

std::size_t EntryView::offsetOf(Position position) const {
    return segments_.start(position.segment) + bytesShownIn(segments_[position.segment], position.unit);
}

void EntryView::select(std::size_t from, std::size_t caret) {
    selection_.beginAt(from);
    selection_.extendTo(caret);
    column_.reset();
    showSelection();
}

void EntryView::selectAll() {
    select(0, segments_.text().size());
    offerSelection();
}

void EntryView::copy() const {
    if (!selection_.isEmpty()) {
        give(selection_.text(), QClipboard::Clipboard);
    }
}

void EntryView::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Shift) {
        offerSelection();
    }
    QAbstractScrollArea::keyReleaseEvent(event);
}

void EntryView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    dragged_ = event->position().toPoint();
    const auto offset = offsetAt(dragged_);
    const auto isThird = sinceDoubleClick_.isValid() &&
                         sinceDoubleClick_.elapsed() < QApplication::doubleClickInterval() &&
                         (dragged_ - doubleClick_).manhattanLength() < QApplication::startDragDistance();
    sinceDoubleClick_.invalidate();
    if (isThird) {
        selection_.beginAt(offset, TextSelection::Unit::Line);
    } else if (event->modifiers().testFlag(Qt::ShiftModifier)) {
        selection_.extendTo(offset);
    } else {
        selection_.beginAt(offset);
    }
    column_.reset();
    showSelection();
}

void EntryView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    doubleClick_ = event->position().toPoint();
    sinceDoubleClick_.start();
    selection_.beginAt(offsetOf(positionAt(doubleClick_)), TextSelection::Unit::Word);
    column_.reset();
    showSelection();
}

void EntryView::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        return;
    }
    dragTo(event->position().toPoint());
    const auto isOutside = dragged_.y() < 0 || dragged_.y() >= viewport()->height();
    if (!isOutside) {
        dragScrolling_.stop();
    } else if (!dragScrolling_.isActive()) {
        dragScrolling_.start(dragScrollInterval, this);
    }
}

void EntryView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        dragScrolling_.stop();
        offerSelection();
    }
}

void EntryView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != dragScrolling_.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    // The further away, the faster.
    const auto beyond = dragged_.y() < 0 ? dragged_.y() : dragged_.y() - viewport()->height() + 1;
    moveBy(beyond);
    dragTo(dragged_);
}

void EntryView::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    auto* const copying = menu.addAction(common::localized("Copy"), this, &EntryView::copy);
    copying->setShortcut(QKeySequence::Copy);
    copying->setEnabled(!selection_.isEmpty());
    auto* const all = menu.addAction(common::localized("Select All"), this, &EntryView::selectAll);
    all->setShortcut(QKeySequence::SelectAll);
    all->setEnabled(!segments_.text().empty());
    menu.addSeparator();
    menu.addAction(common::localized("Find..."), this, &EntryView::findWanted)->setShortcut(QKeySequence::Find);
    auto* const saving = menu.addAction(common::localized("Save..."), this, &EntryView::saveWanted);
    saving->setShortcut(QKeySequence::Save);
    saving->setEnabled(!segments_.text().empty());
    menu.exec(event->globalPos());
}

std::optional<std::size_t> EntryView::movedCaret(const QKeyEvent& event) {
    const auto is = [&](QKeySequence::StandardKey key) { return event.matches(key); };
    const auto caret = selection_.caret();
    const auto page = std::max(textHeight() / QFontMetrics(font()).height() - 1, 1);
    const auto lines = is(QKeySequence::SelectNextLine)       ? 1
                       : is(QKeySequence::SelectPreviousLine) ? -1
                       : is(QKeySequence::SelectNextPage)     ? page
                       : is(QKeySequence::SelectPreviousPage) ? -page
                                                              : 0;
    if (lines != 0) {
        return placeLinesBelow(caret, lines);
    }
    column_.reset();
    if (is(QKeySequence::SelectNextChar)) {
        return nextPlace(caret, QTextLayout::SkipCharacters);
    }
    if (is(QKeySequence::SelectPreviousChar)) {
        return previousPlace(caret, QTextLayout::SkipCharacters);
    }
    if (is(QKeySequence::SelectNextWord)) {
        return nextPlace(caret, QTextLayout::SkipWords);
    }
    if (is(QKeySequence::SelectPreviousWord)) {
        return previousPlace(caret, QTextLayout::SkipWords);
    }
    if (is(QKeySequence::SelectStartOfDocument)) {
        return 0;
    }
    if (is(QKeySequence::SelectEndOfDocument)) {
        return segments_.text().size();
    }
    if (const auto isStart = is(QKeySequence::SelectStartOfLine); isStart || is(QKeySequence::SelectEndOfLine)) {
        const auto [segment, unit] = positionOf(caret);
        const auto line = layoutOf(segment).lineForTextPosition(unit);
        return offsetOf({segment, line.textStart() + (isStart ? 0 : line.textLength())});
    }
    return std::nullopt;
}

std::size_t EntryView::nextPlace(std::size_t offset, QTextLayout::CursorMode mode) {
    const auto [segment, unit] = positionOf(offset);
    const auto& layout = layoutOf(segment);
    if (unit < layout.text().size()) {
        return offsetOf({segment, layout.nextCursorPosition(unit, mode)});
    }
    return segment + 1 < segments_.size() ? segments_.start(segment + 1) : offset;
}

std::size_t EntryView::previousPlace(std::size_t offset, QTextLayout::CursorMode mode) {
    const auto [segment, unit] = positionOf(offset);
    if (unit > 0) {
        return offsetOf({segment, layoutOf(segment).previousCursorPosition(unit, mode)});
    }
    if (segment == 0) {
        return 0;
    }
    // Before a line feed is a place of its own; where a long line was cut is none.
    const auto end = static_cast<int>(layoutOf(segment - 1).text().size());
    return segments_.endsLine(segment - 1)
               ? offset - 1
               : offsetOf({segment - 1, layoutOf(segment - 1).previousCursorPosition(end, mode)});
}

std::size_t EntryView::placeLinesBelow(std::size_t offset, int lines) {
    auto [segment, unit] = positionOf(offset);
    auto number = layoutOf(segment).lineForTextPosition(unit).lineNumber();
    if (!column_) {
        column_ = layoutOf(segment).lineAt(number).cursorToX(unit);
    }
    for (; lines > 0; --lines) {
        if (number + 1 < layoutOf(segment).lineCount()) {
            ++number;
        } else if (segment + 1 < segments_.size()) {
            ++segment;
            number = 0;
        } else {
            return segments_.text().size();
        }
    }
    for (; lines < 0; ++lines) {
        if (number > 0) {
            --number;
        } else if (segment > 0) {
            --segment;
            number = layoutOf(segment).lineCount() - 1;
        } else {
            return 0;
        }
    }
    return offsetOf({segment, layoutOf(segment).lineAt(number).xToCursor(*column_)});
}

std::size_t EntryView::offsetAt(QPoint point) {
    return offsetOf(positionAt(point, QTextLine::CursorBetweenCharacters));
}

void EntryView::extendTo(std::size_t offset) {
    selection_.extendTo(offset);
    showSelection();
    reveal(offset);
}

void EntryView::dragTo(QPoint point) {
    dragged_ = point;
    selection_.extendTo(offsetAt({point.x(), std::clamp(point.y(), 0, viewport()->height() - 1)}));
    showSelection();
}

void EntryView::showSelection() {
    viewport()->update();
    EntryViewAccessible::announceSelection(*this);
}

void EntryView::reveal(std::size_t offset) {
    const auto [segment, unit] = positionOf(offset);
    const auto line = layoutOf(segment).lineForTextPosition(unit);
    const auto top = static_cast<int>(line.y());
    const auto bottom = top + static_cast<int>(std::ceil(line.height()));
    const auto isAbove = segment < top_ || (segment == top_ && top < hidden_);
    auto seen = -hidden_;
    for (auto between = top_; between < segment && seen <= textHeight(); ++between) {
        seen += heightOf(between);
    }
    if (isAbove) {
        top_ = segment;
        hidden_ = 0;
        moveBy(top);
    } else if (seen + bottom > textHeight()) {
        top_ = segment;
        hidden_ = 0;
        moveBy(bottom - textHeight());
    }
}

/// For the middle button, where the desktop has that.
void EntryView::offerSelection() const {
    if (!selection_.isEmpty() && QApplication::clipboard()->supportsSelection()) {
        give(selection_.text(), QClipboard::Selection);
    }
}

void EntryView::mark(TextSearch search) {
    search_ = std::move(search);
    viewport()->update();
}

void EntryView::showMatch(TextSearch::Match match) {
    select(match.begin, match.end);
    reveal(match.begin);
}

QList<QTextLayout::FormatRange> EntryView::formats(std::size_t segment) const {
    const auto start = segments_.start(segment);
    const auto end = start + segments_.bytes(segment);
    QList<QTextLayout::FormatRange> ranges;
    const auto add = [&](std::size_t from, std::size_t to) -> QTextLayout::FormatRange* {
        if (from >= to || from >= end || to <= start) {
            return nullptr;
        }
        const auto bytes = segments_[segment];
        const auto first = from <= start ? 0 : unitsShowing(bytes, from - start);
        const auto last = unitsShowing(bytes, std::min(to, end) - start);
        return &ranges.emplace_back(QTextLayout::FormatRange{.start = first, .length = last - first, .format = {}});
    };
    if (!search_.isEmpty()) {
        // One that began in a piece before is painted there only.
        const auto near = segments_.text().substr(0, std::min(end + search_.longest(), segments_.text().size()));
        auto color = palette().color(QPalette::Highlight);
        color.setAlphaF(0.3F);
        for (auto match = search_.next(near, start); match && match->begin < end;
             match = search_.next(near, match->end)) {
            if (auto* const range = add(match->begin, match->end)) {
                range->format.setBackground(color);
            }
        }
    }
    if (auto* const range = add(selection_.begin(), selection_.end())) {
        // A match is shown as selected while the keyboard is where it is looked for.
        const auto group = hasFocus() || !search_.isEmpty() ? QPalette::Active : QPalette::Inactive;
        range->format.setBackground(palette().brush(group, QPalette::Highlight));
        range->format.setForeground(palette().brush(group, QPalette::HighlightedText));
        // A line feed that is selected is seen as the rest of its line.
        if (segments_.endsLine(segment) && selection_.end() >= end) {
            ++range->length;
            range->format.setProperty(QTextFormat::FullWidthSelection, true);
        }
    }
    return ranges;
}

} // namespace quorvale::ui::logs
