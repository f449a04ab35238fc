#include "ui/logs/EntryView.hpp"

#include "ui/common/ContinuousCorner.hpp"
#include "ui/common/FocusRing.hpp"
#include "ui/logs/EntryViewAccessible.hpp"
#include "ui/logs/displayText.hpp"

#include <QFocusEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QLayout>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvale::ui::logs {

namespace {

constexpr int padding = 8;
constexpr int hairline = 1;
constexpr int scrollBarInset = 5; // out of the way of the round corners

// A text up to these is laid out whole, in a few milliseconds.
constexpr std::size_t fewSegments = 256;
constexpr std::size_t fewBytes = std::size_t{32} << 10;
constexpr std::size_t keptLayouts = 2 * fewSegments;

// How much of a text is measured to know how wide its characters are.
constexpr std::size_t sampleBytes = 4096;

// Beyond that many pixels a step of the scroll bar is more than one.
constexpr std::int64_t longestScrollBar = 1'000'000'000;

double bytesPerPixel(const TextSegments& segments, const QFont& font) {
    const QFontMetricsF metrics(font);
    double pixels = 0;
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < segments.size() && i < fewSegments && bytes < sampleBytes; ++i) {
        pixels += metrics.horizontalAdvance(displayText(segments[i]));
        bytes += segments[i].size();
    }
    return bytes == 0 ? 1 / metrics.averageCharWidth() : static_cast<double>(bytes) / std::max(pixels, 1.0);
}

} // namespace

/// Lies over the list: makes its corners round, those of the scroll bar too, and shows the keyboard's focus.
class EntryView::Outline final : public QWidget {
public:
    explicit Outline(EntryView& list) : QWidget(&list) { setAttribute(Qt::WA_TransparentForMouseEvents); }

    void setFocusShown(bool isShown) {
        isFocusShown_ = isShown;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        auto corners = common::continuousRoundedRect(rect(), cornerRadius);
        corners.addRect(rect());
        painter.fillPath(corners, palette().window());

        if (isFocusShown_) {
            common::paintFocusRing(painter, rect(), cornerRadius, palette().color(QPalette::Base),
                                   palette().color(QPalette::Window));
            return;
        }
        auto color = palette().color(QPalette::WindowText);
        color.setAlphaF(0.25F);
        constexpr auto inset = hairline / 2.0;
        painter.strokePath(
            common::continuousRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius - inset),
            QPen(color, hairline));
    }

private:
    bool isFocusShown_ = false;
};

EntryView::EntryView(Items items, QWidget* parent)
    : QAbstractScrollArea(parent),
      items_(std::move(items)),
      segments_(*items_.front()),
      heights_(0, [](std::size_t) { return 1; }),
      selection_(segments_),
      outline_(new Outline(*this)) {
    EntryViewAccessible::install();
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The focus is the viewport's, which is the row to assistive technologies: the toolkit tells them of nothing else.
    viewport()->setFocusProxy(nullptr);
    setFocusProxy(viewport());
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setForegroundRole(QPalette::Text);
    viewport()->setCursor(Qt::IBeamCursor);
    auto& beside = *verticalScrollBar()->parentWidget();
    beside.installEventFilter(this);
    beside.setBackgroundRole(QPalette::Base);
    beside.setAutoFillBackground(true);
    const auto outside = isRightToLeft() ? QMargins(2 * hairline, 0, 0, 0) : QMargins(0, 0, 2 * hairline, 0);
    beside.layout()->setContentsMargins(QMargins(0, scrollBarInset, 0, scrollBarInset) + outside);
}

void EntryView::setItems(Items items) {
    items_ = std::move(items);
    segments_ = TextSegments(*items_.front());
    selection_ = TextSelection(segments_);
    column_.reset();
    dragScrolling_.stop();
    top_ = 0;
    hidden_ = 0;
    announcedTop_.reset();
    layOutAgain();
}

void EntryView::scrollTo(std::size_t segment) {
    top_ = std::min(segment, segments_.size() - 1);
    hidden_ = 0;
    moveBy(0);
}

QRect EntryView::rectOf(Position position) {
    for (auto [segment, y] = firstPainted(); segment < segments_.size() && y < viewport()->height();
         y += heightOf(segment), ++segment) {
        if (segment != position.segment) {
            continue;
        }
        const auto& layout = layoutOf(segment);
        const auto line = layout.lineForTextPosition(std::min(position.unit, static_cast<int>(layout.text().size())));
        const auto left = line.cursorToX(position.unit);
        const auto right = line.cursorToX(position.unit + 1);
        return QRectF(padding + std::min(left, right), y + line.y(), std::abs(right - left), line.height()).toRect();
    }
    return {};
}

EntryView::Position EntryView::positionAt(QPoint point, QTextLine::CursorPosition nearest) {
    auto [segment, y] = firstPainted();
    for (; segment + 1 < segments_.size() && point.y() >= y + heightOf(segment); ++segment) {
        y += heightOf(segment);
    }
    const auto& layout = layoutOf(segment);
    auto line = layout.lineAt(0);
    for (int next = 1; next < layout.lineCount() && point.y() >= y + layout.lineAt(next).y(); ++next) {
        line = layout.lineAt(next);
    }
    return {segment, line.xToCursor(point.x() - padding, nearest)};
}

bool EntryView::event(QEvent* event) {
    const auto taken = QAbstractScrollArea::event(event);
    if (event->type() == QEvent::Resize) {
        outline_->setGeometry(rect());
    }
    return taken;
}

bool EntryView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        outline_->setFocusShown(event->type() == QEvent::FocusIn &&
                                (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason));
    }
    return QAbstractScrollArea::viewportEvent(event);
}

bool EntryView::eventFilter(QObject* watched, QEvent* event) {
    // The base class raises the scroll bar each time it lays it out.
    if (event->type() == QEvent::ZOrderChange && watched == verticalScrollBar()->parentWidget()) {
        outline_->raise();
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

void EntryView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Text));
    if (layouts_.size() > keptLayouts) {
        layouts_.clear();
    }
    for (auto [segment, y] = firstPainted(); segment < segments_.size() && y < viewport()->height();
         y += heightOf(segment), ++segment) {
        layoutOf(segment).draw(&painter, QPointF(padding, y), formats(segment));
    }
}

void EntryView::resizeEvent(QResizeEvent* event) {
    if (event->size().width() != event->oldSize().width()) {
        layOutAgain();
    } else {
        updateScrollBar();
        moveBy(0);
    }
}

void EntryView::scrollContentsBy(int /*dx*/, int /*dy*/) {
    if (isFollowing_) {
        return;
    }
    const auto& bar = *verticalScrollBar();
    const auto distance = bar.value() - std::exchange(value_, bar.value());
    const auto isStep = !bar.isSliderDown() && std::abs(distance) <= 2 * bar.pageStep();
    if (isStep && bar.value() != bar.minimum() && bar.value() != bar.maximum()) {
        moveBy(distance * pixelsPerValue_);
    } else {
        moveToValue(bar.value());
    }
}

void EntryView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (const auto caret = movedCaret(*event)) {
        extendTo(*caret);
    } else if (event->matches(QKeySequence::MoveToStartOfLine) || event->matches(QKeySequence::MoveToStartOfDocument)) {
        verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum);
    } else if (event->matches(QKeySequence::MoveToEndOfLine) || event->matches(QKeySequence::MoveToEndOfDocument)) {
        verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void EntryView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        layOutAgain();
    }
}

int EntryView::textWidth() const {
    return std::max(viewport()->width() - 2 * padding, 1);
}

int EntryView::textHeight() const {
    return std::max(viewport()->height() - 2 * padding, 1);
}

const QTextLayout& EntryView::layoutOf(std::size_t segment) {
    auto& layout = layouts_[segment];
    if (!layout) {
        layout = std::make_unique<QTextLayout>(displayText(segments_[segment]), font(), viewport());
        QTextOption option;
        option.setTextDirection(Qt::LeftToRight);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout->setTextOption(option);
        layout->setCacheEnabled(true);
        layout->beginLayout();
        qreal y = 0;
        for (auto line = layout->createLine(); line.isValid(); line = layout->createLine()) {
            line.setLineWidth(textWidth());
            line.setPosition({0, y});
            y += std::ceil(line.height());
        }
        layout->endLayout();
    }
    return *layout;
}

int EntryView::heightOf(std::size_t segment) {
    const auto& layout = layoutOf(segment);
    const auto last = layout.lineAt(layout.lineCount() - 1);
    return static_cast<int>(last.y() + std::ceil(last.height()));
}

BlockSums EntryView::exactHeights() {
    return {segments_.size(), [this](std::size_t segment) { return heightOf(segment); }};
}

BlockSums EntryView::estimatedHeights() const {
    const auto linesPerByte = 1 / std::max(bytesPerPixel(segments_, font()) * textWidth(), 1.0);
    const auto lineHeight = static_cast<int>(std::ceil(QFontMetricsF(font()).height()));
    return {segments_.size(), [this, linesPerByte, lineHeight](std::size_t segment) {
                const auto fullLines = static_cast<double>(segments_.bytes(segment)) * linesPerByte;
                return (static_cast<int>(fullLines) + 1) * lineHeight;
            }};
}

void EntryView::layOutAgain() {
    layouts_.clear();
    const auto isShort = segments_.size() <= fewSegments && items_.front()->size() <= fewBytes;
    heights_ = isShort ? exactHeights() : estimatedHeights();
    updateScrollBar();
    moveBy(0);
}

void EntryView::updateScrollBar() {
    pixelsPerValue_ = 1 + heights_.total() / longestScrollBar;
    const auto beyond = std::max<std::int64_t>(heights_.total() - textHeight(), 0);
    auto& bar = *verticalScrollBar();
    const QScopedValueRollback byUs(isFollowing_, true);
    bar.setRange(0, static_cast<int>((beyond + pixelsPerValue_ - 1) / pixelsPerValue_));
    // A page leaves a line of what was seen before.
    const auto line = QFontMetrics(font()).height();
    bar.setPageStep(std::max(static_cast<int>((textHeight() - line) / pixelsPerValue_), 1));
    bar.setSingleStep(std::max(static_cast<int>(line / pixelsPerValue_), 1));
}

void EntryView::moveBy(std::int64_t pixels) {
    auto above = pixels + hidden_;
    while (above < 0 && top_ > 0) {
        above += heightOf(--top_);
    }
    while (top_ + 1 < segments_.size() && above >= heightOf(top_)) {
        above -= heightOf(top_++);
    }
    hidden_ = static_cast<int>(std::clamp<std::int64_t>(above, 0, heightOf(top_)));
    stayWithinText();

    auto& bar = *verticalScrollBar();
    if (!bar.isSliderDown()) {
        const QScopedValueRollback byUs(isFollowing_, true);
        const auto isAtStart = top_ == 0 && hidden_ == 0;
        bar.setValue(isAtStart ? bar.minimum() : isAtEnd_ ? bar.maximum() : valueBetweenEnds());
    }
    value_ = bar.value();
    viewport()->update();
    if (std::exchange(announcedTop_, top_) != top_) {
        EntryViewAccessible::announceScrolling(*this);
    }
}

/// Where the scroll bar is when the text is at neither end. Near an end it goes by what is really there: were less left
/// on the bar than in the text, the last step would jump over the rest.
int EntryView::valueBetweenEnds() {
    const auto near = std::int64_t{3} * textHeight();
    const auto& bar = *verticalScrollBar();
    auto above = heights_.before(top_) + std::int64_t{hidden_} * heights_.size(top_) / heightOf(top_);
    if (above < near) {
        above = hidden_;
        for (auto segment = top_; segment > 0 && above < near;) {
            above += heightOf(--segment);
        }
    } else if (heights_.total() - textHeight() - above < near) {
        std::int64_t below = -hidden_ - textHeight();
        for (auto segment = top_; segment < segments_.size() && below < near; ++segment) {
            below += heightOf(segment);
        }
        above = bar.maximum() * pixelsPerValue_ - below;
    }
    return static_cast<int>(std::clamp<std::int64_t>(above / pixelsPerValue_, 1, std::max(bar.maximum() - 1, 1)));
}

void EntryView::moveToValue(int value) {
    if (value == verticalScrollBar()->maximum()) {
        top_ = segments_.size() - 1;
        hidden_ = heightOf(top_);
    } else {
        const auto y = value * pixelsPerValue_;
        top_ = heights_.at(y);
        const auto estimated = heights_.size(top_);
        hidden_ = static_cast<int>((y - heights_.before(top_)) * heightOf(top_) / estimated);
    }
    moveBy(0);
}

/// The last line ends at the lower edge, or above it only if all of the text is seen.
void EntryView::stayWithinText() {
    std::int64_t below = -hidden_;
    for (auto segment = top_; segment < segments_.size() && below <= textHeight(); ++segment) {
        below += heightOf(segment);
    }
    isAtEnd_ = below <= textHeight();
    auto above = hidden_ - std::max<std::int64_t>(textHeight() - below, 0);
    while (above < 0 && top_ > 0) {
        above += heightOf(--top_);
    }
    hidden_ = static_cast<int>(std::max<std::int64_t>(above, 0));
}

std::pair<std::size_t, int> EntryView::firstPainted() {
    auto segment = top_;
    auto y = padding - hidden_;
    while (y > 0 && segment > 0) {
        y -= heightOf(--segment);
    }
    return {segment, y};
}

} // namespace quorvale::ui::logs
