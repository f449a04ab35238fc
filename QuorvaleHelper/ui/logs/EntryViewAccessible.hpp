#pragma once

#include "ui/logs/EntryView.hpp"

#include <QAccessibleWidget>

#include <memory>

namespace quorvale::ui::logs {

/// What assistive technologies see of an `EntryView`: a list with one item, which has the row's text. The text is
/// measured once it is asked for by offsets, which takes some tenths of a second for a hundred megabytes.
class EntryViewAccessible final : public QAccessibleWidget {
public:
    /// Has every `EntryView` of the process described by this class.
    static void install();

    /// Tells of another visible piece of the text, which is the row's name, and of the caret that goes with it.
    static void announceScrolling(EntryView& view);

    /// Tells what is selected now.
    static void announceSelection(EntryView& view);

    explicit EntryViewAccessible(EntryView& view);
    ~EntryViewAccessible() override;
    EntryViewAccessible(const EntryViewAccessible&) = delete;
    EntryViewAccessible& operator=(const EntryViewAccessible&) = delete;

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;

private:
    class Row;
    Row* row_; ///< Qt's, until it is given back by its identifier.
};

} // namespace quorvale::ui::logs
