#include "ui/logs/EntryViewAccessible.hpp"

#include "ui/logs/BlockSums.hpp"
#include "ui/logs/displayText.hpp"
#include "ui/logs/rangeAround.hpp"

#include <QPointer>
#include <QScrollBar>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

namespace quorvale::ui::logs {

namespace {

using Position = EntryView::Position;

void announceCaret(QAccessibleInterface& row) {
    QAccessibleTextCursorEvent moved(&row, row.textInterface()->cursorPosition());
    QAccessible::updateAccessibility(&moved);
}

} // namespace

/// The list's one item, which is what the list has in view. Offsets count the UTF-16 units of what is shown, and one
/// for each line feed.
class EntryViewAccessible::Row final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit Row(EntryView& view) : QAccessibleWidget(view.viewport(), QAccessible::ListItem), view_(&view) {}

    [[nodiscard]] bool isValid() const override { return QAccessibleWidget::isValid() && !view_.isNull(); }

    /// The name is what is visible: that of all the text would be too long to be spoken, or even to be sent.
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Name) {
            return {};
        }
        const auto last = view_->positionAt(view_->viewport()->rect().bottomLeft()).segment;
        QString visible;
        for (auto segment = view_->firstVisible(); segment <= last; ++segment) {
            visible += shown(segment);
        }
        return visible.trimmed();
    }

    [[nodiscard]] QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.readOnly = true;
        state.multiLine = true;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] int characterCount() const override {
        return static_cast<int>(std::min<std::int64_t>(sums().total(), std::numeric_limits<int>::max()));
    }

    [[nodiscard]] QString text(int start, int end) const override {
        const auto from = std::clamp(start, 0, characterCount());
        const auto to = std::clamp(end < 0 ? characterCount() : end, from, characterCount());
        auto segment = at(from).segment;
        const auto skipped = from - offset({segment, 0});
        QString text;
        for (; segment < view_->segments().size() && text.size() < skipped + to - from; ++segment) {
            text += shown(segment);
        }
        return text.mid(skipped, to - from);
    }

    QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int* start, int* end) const override {
        return textOf(around(offset, boundary), start, end);
    }

    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int* start, int* end) const override {
        const auto here = around(offset, boundary).first;
        return textOf(here == 0 ? std::pair{0, 0} : around(here - 1, boundary), start, end);
    }

    QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int* start, int* end) const override {
        const auto next = around(offset, boundary).second;
        return textOf(next >= characterCount() ? std::pair{next, next} : around(next, boundary), start, end);
    }

    [[nodiscard]] QRect characterRect(int offset) const override {
        const auto rect = view_->rectOf(at(offset));
        return rect.isNull() ? rect : rect.translated(view_->viewport()->mapToGlobal(QPoint()));
    }

    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override {
        return offset(view_->positionAt(view_->viewport()->mapFromGlobal(point)));
    }

    void scrollToSubstring(int start, int /*end*/) override { view_->scrollTo(at(start).segment); }

    // Where nothing is selected there is no caret: reading starts at what is visible.
    [[nodiscard]] int cursorPosition() const override {
        const auto& selection = view_->selection();
        return selection.isEmpty() ? offset({view_->firstVisible(), 0}) : offset(view_->positionOf(selection.caret()));
    }

    void setCursorPosition(int offset) override { scrollToSubstring(offset, offset); }

    QString attributes(int offset, int* start, int* end) const override {
        *start = 0;
        *end = std::max(characterCount(), offset);
        return {};
    }

    void selection(int index, int* start, int* end) const override {
        *start = *end = 0;
        if (index < selectionCount()) {
            *start = offset(view_->positionOf(view_->selection().begin()));
            *end = offset(view_->positionOf(view_->selection().end()));
        }
    }

    [[nodiscard]] int selectionCount() const override { return view_->selection().isEmpty() ? 0 : 1; }

    void addSelection(int start, int end) override { view_->select(byte(start), byte(end)); }

    void removeSelection(int index) override {
        if (index < selectionCount()) {
            view_->select(view_->selection().caret(), view_->selection().caret());
        }
    }

    void setSelection(int /*index*/, int start, int end) override { addSelection(start, end); }

private:
    [[nodiscard]] QString shown(std::size_t segment) const {
        const auto& segments = view_->segments();
        auto text = displayText(segments[segment]);
        if (segments.endsLine(segment)) {
            text += u'\n';
        }
        return text;
    }

    const BlockSums& sums() const {
        const auto& text = view_->items().front();
        if (!sums_ || measured_.lock() != text) {
            measured_ = text;
            sums_.emplace(view_->segments().size(),
                          [this](std::size_t segment) { return static_cast<int>(shown(segment).size()); });
        }
        return *sums_;
    }

    [[nodiscard]] int offset(Position position) const {
        const auto offset = sums().before(position.segment) + position.unit;
        return static_cast<int>(std::min<std::int64_t>(offset, std::numeric_limits<int>::max()));
    }

    [[nodiscard]] Position at(int offset) const {
        const auto within = std::clamp(offset, 0, characterCount());
        const auto segment = sums().at(within);
        return {segment, static_cast<int>(within - sums().before(segment))};
    }

    [[nodiscard]] std::size_t byte(int offset) const { return view_->offsetOf(at(offset)); }

    [[nodiscard]] std::pair<int, int> around(int offset, QAccessible::TextBoundaryType boundary) const {
        if (boundary == QAccessible::NoBoundary) {
            return {0, characterCount()};
        }
        const auto [segment, unit] = at(offset);
        const auto start = this->offset({segment, 0});
        const auto text = shown(segment);
        auto range = std::pair(0, static_cast<int>(text.size()));
        if (boundary == QAccessible::CharBoundary) {
            range = rangeAround(text, unit, QTextBoundaryFinder::Grapheme);
        } else if (boundary == QAccessible::WordBoundary) {
            range = rangeAround(text, unit, QTextBoundaryFinder::Word);
        }
        const auto [from, to] = range;
        return {start + from, start + to};
    }

    QString textOf(std::pair<int, int> range, int* start, int* end) const {
        std::tie(*start, *end) = range;
        return text(*start, *end);
    }

    QPointer<EntryView> view_;
    mutable std::optional<BlockSums> sums_;
    mutable std::weak_ptr<const std::string> measured_;
};

void EntryViewAccessible::install() {
    [[maybe_unused]] static const bool once = [] {
        QAccessible::installFactory([](const QString& /*className*/, QObject* object) -> QAccessibleInterface* {
            if (auto* const view = qobject_cast<EntryView*>(object)) {
                return new EntryViewAccessible(*view);
            }
            auto* const parent = qobject_cast<EntryView*>(object->parent());
            return parent && parent->viewport() == object ? new Row(*parent) : nullptr;
        });
        return true;
    }();
}

void EntryViewAccessible::announceScrolling(EntryView& view) {
    if (!QAccessible::isActive()) {
        return;
    }
    auto* const row = QAccessible::queryAccessibleInterface(view.viewport());
    QAccessibleEvent name(row, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&name);
    announceCaret(*row);
}

void EntryViewAccessible::announceSelection(EntryView& view) {
    if (!QAccessible::isActive()) {
        return;
    }
    auto* const row = QAccessible::queryAccessibleInterface(view.viewport());
    int start = 0;
    int end = 0;
    row->textInterface()->selection(0, &start, &end);
    QAccessibleTextSelectionEvent selected(row, start, end);
    selected.setCursorPosition(row->textInterface()->cursorPosition());
    QAccessible::updateAccessibility(&selected);
    announceCaret(*row);
}

EntryViewAccessible::EntryViewAccessible(EntryView& view) : QAccessibleWidget(&view, QAccessible::List) {}

QAccessible::State EntryViewAccessible::state() const {
    auto state = QAccessibleWidget::state();
    state.focusable = false;
    state.focused = false;
    return state;
}

int EntryViewAccessible::childCount() const {
    return static_cast<int>(children().size());
}

QAccessibleInterface* EntryViewAccessible::child(int index) const {
    const auto widgets = children();
    return index >= 0 && index < childCount()
               ? QAccessible::queryAccessibleInterface(widgets[static_cast<std::size_t>(index)])
               : nullptr;
}

int EntryViewAccessible::indexOfChild(const QAccessibleInterface* child) const {
    const auto widgets = children();
    const auto* const found = std::ranges::find(widgets, child->object());
    return found == widgets.end() ? -1 : static_cast<int>(found - widgets.begin());
}

QAccessibleInterface* EntryViewAccessible::focusChild() const {
    auto* const row = child(0);
    return row->state().focused ? row : nullptr;
}

std::array<QWidget*, 2> EntryViewAccessible::children() const {
    const auto& view = static_cast<const EntryView&>(*widget());
    return {view.viewport(), view.verticalScrollBar()->parentWidget()};
}

} // namespace quorvale::ui::logs
