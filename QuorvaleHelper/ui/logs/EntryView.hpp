#pragma once

#include "ui/logs/BlockSums.hpp"
#include "ui/logs/TextSearch.hpp"
#include "ui/logs/TextSegments.hpp"
#include "ui/logs/TextSelection.hpp"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QElapsedTimer>
#include <QTextLayout>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace quorvale::ui::logs {

/// A scrollable list with rounded corners. Its rows are plain text, whatever they hold, and wrap at the list's width.
///
/// Only what is visible is laid out, so that a text of a hundred megabytes is shown as fast as one of a line. The
/// heights of all other lines are estimated from their lengths: the scroll bar is about right, steps and pages go by
/// pixels, both ends are exact. A text of a few lines is laid out whole, and nothing is estimated.
///
/// The text is selected with the mouse and the keyboard as in the desktop's text editors, but that keys without Shift
/// scroll: no caret is seen. What is copied is what was logged, not how it is shown.
class EntryView final : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// One row: the text, UTF-8 or any bytes, shared with whoever has it too.
    using Items = std::array<std::shared_ptr<const std::string>, 1>;

    static constexpr double cornerRadius = 10;

    /// A place in the row's text: a segment and a UTF-16 unit of what is shown of it.
    struct Position {
        std::size_t segment;
        int unit;

        bool operator==(const Position&) const = default;
    };

    explicit EntryView(Items items, QWidget* parent = nullptr);

    /// Shows other rows, from their beginning.
    void setItems(Items items);

    [[nodiscard]] const Items& items() const { return items_; }

    [[nodiscard]] const TextSegments& segments() const { return segments_; }

    /// Brings a segment to the upper edge, or as close to it as the end of the text allows.
    void scrollTo(std::size_t segment);

    /// The segment at the upper edge.
    [[nodiscard]] std::size_t firstVisible() const { return top_; }

    /// The place of a character on the viewport; nothing when its segment isn't on it.
    [[nodiscard]] QRect rectOf(Position position);

    /// The character at a point of the viewport, or the nearest one, or place between two.
    [[nodiscard]] Position positionAt(QPoint point, QTextLine::CursorPosition nearest = QTextLine::CursorOnCharacter);

    [[nodiscard]] Position positionOf(std::size_t offset) const;
    /// The byte of the row's text at which that begins.
    [[nodiscard]] std::size_t offsetOf(Position position) const;

    [[nodiscard]] const TextSelection& selection() const { return selection_; }

    /// Selects from one byte of the row's text to another, where the caret is.
    void select(std::size_t from, std::size_t caret);

    /// Leaves what is selected with the clipboard, if anything is.
    void copy() const;

    /// Marks what that search finds.
    void mark(TextSearch search);

    /// Selects a match and brings it into sight.
    void showMatch(TextSearch::Match match);

Q_SIGNALS:
    /// A person asks to look for a text.
    void findWanted();

    /// Or to save it.
    void saveWanted();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class Outline;

    [[nodiscard]] int textWidth() const;
    [[nodiscard]] int textHeight() const;
    const QTextLayout& layoutOf(std::size_t segment);
    int heightOf(std::size_t segment);
    BlockSums exactHeights();
    [[nodiscard]] BlockSums estimatedHeights() const;
    void layOutAgain();
    void updateScrollBar();
    void moveBy(std::int64_t pixels);
    void moveToValue(int value);
    int valueBetweenEnds();
    void stayWithinText();
    /// The first segment that is visible at all, and where its upper edge is on the viewport.
    std::pair<std::size_t, int> firstPainted();

    /// Where a key moves the caret to; nothing for keys that don't.
    [[nodiscard]] std::optional<std::size_t> movedCaret(const QKeyEvent& event);
    [[nodiscard]] std::size_t nextPlace(std::size_t offset, QTextLayout::CursorMode mode);
    [[nodiscard]] std::size_t previousPlace(std::size_t offset, QTextLayout::CursorMode mode);
    [[nodiscard]] std::size_t placeLinesBelow(std::size_t offset, int lines);
    [[nodiscard]] std::size_t offsetAt(QPoint point);
    void extendTo(std::size_t offset);
    void dragTo(QPoint point);
    void showSelection();
    void reveal(std::size_t offset);
    void selectAll();
    void offerSelection() const;
    /// What of a segment is painted unlike the rest: matches and, over them, what is selected.
    [[nodiscard]] QList<QTextLayout::FormatRange> formats(std::size_t segment) const;

    Items items_;
    TextSegments segments_;
    std::unordered_map<std::size_t, std::unique_ptr<QTextLayout>> layouts_;
    BlockSums heights_;

    // What is at the upper edge of the text: so many pixels of that segment are above it.
    std::size_t top_ = 0;
    int hidden_ = 0;
    bool isAtEnd_ = false;
    std::optional<std::size_t> announcedTop_ = 0; ///< what assistive technologies were told of

    std::int64_t pixelsPerValue_ = 1; ///< of the scroll bar
    int value_ = 0;                   ///< the scroll bar's, as it was set last
    bool isFollowing_ = false;        ///< The scroll bar is being set to where the text is.

    TextSelection selection_;
    TextSearch search_;
    std::optional<qreal> column_; ///< that moving by lines keeps to
    QElapsedTimer sinceDoubleClick_;
    QPoint doubleClick_;
    QPoint dragged_;
    QBasicTimer dragScrolling_;
    Outline* outline_;
};

} // namespace quorvale::ui::logs
