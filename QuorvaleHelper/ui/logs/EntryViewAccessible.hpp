#pragma once

#include "ui/logs/EntryView.hpp"

#include <QAccessibleWidget>

#include <array>

namespace quorvale::ui::logs {

/// What assistive technologies see of an `EntryView`: a list with one item, which has the row's text and the focus, and
/// what holds the scroll bar. The text is measured once it is asked for by offsets, which takes some tenths of a second
/// for a hundred megabytes.
class EntryViewAccessible final : public QAccessibleWidget {
public:
    /// Has every `EntryView` of the process described by this class.
    static void install();

    /// Tells of another visible piece of the text, which is the row's name, and of the caret that goes with it.
    static void announceScrolling(EntryView& view);

    /// Tells what is selected now, and where the caret is.
    static void announceSelection(EntryView& view);

    explicit EntryViewAccessible(EntryView& view);

    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;

private:
    class Row;

    /// The row, and the scroll bar's frame, which is there but not visible when all of the text is.
    [[nodiscard]] std::array<QWidget*, 2> children() const;
};

} // namespace quorvale::ui::logs
