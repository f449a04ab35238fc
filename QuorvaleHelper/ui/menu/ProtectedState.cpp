#include "ui/menu/ProtectedState.hpp"

#include "ui/common/ContinuousCorner.hpp"
#include "ui/common/localized.hpp"
#include "ui/menu/SystemColors.hpp"

#include <QAccessible>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvale::ui::menu {

namespace {

using common::continuousRoundedRect;
using common::localized;

constexpr double padding = 5;
constexpr double cornerRadius = 5;

} // namespace

ProtectedLook ProtectedLook::of(bool isProtected) {
    return isProtected
               ? ProtectedLook{QStringLiteral(":/symbols/lock.shield.svg"), localized("Protected"), SystemColors::green}
               : ProtectedLook{QStringLiteral(":/symbols/lock.circle.dotted.svg"), localized("Unprotected"),
                               SystemColors::red};
}

ProtectedGeometry ProtectedGeometry::of(const QSizeF& view, double iconSize, Qt::LayoutDirection direction) {
    const auto box = QRectF({}, view).adjusted(padding, padding, -padding, -padding);
    const auto content = box.adjusted(padding, padding, -padding, -padding);
    const QRectF icon(content.left(), content.center().y() - iconSize / 2, iconSize, iconSize);
    const auto textLeft = icon.right() + padding;
    const auto textRight = std::max(textLeft, content.right() - padding);
    const QRectF text(QPointF(textLeft, content.top()), QPointF(textRight, content.bottom()));
    if (direction == Qt::LeftToRight) {
        return {box, icon, text};
    }
    const auto mirrored = [&](const QRectF& rect) {
        return QRectF({view.width() - rect.right(), rect.top()}, rect.size());
    };
    return {mirrored(box), mirrored(icon), mirrored(text)};
}

ProtectedState::ProtectedState(bool isProtected, double iconSize, QWidget* parent)
    : QLabel(parent), iconSize_(iconSize), look_(ProtectedLook::of(isProtected)), symbol_(look_.symbol) {
    setTextFormat(Qt::PlainText);
    setText(look_.text);
    setAccessibleName(look_.text);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ProtectedState::setProtected(bool isProtected) {
    auto look = ProtectedLook::of(isProtected);
    if (look == look_) {
        return;
    }
    look_ = std::move(look);
    symbol_ = platform::desktop::SymbolImage(look_.symbol);
    setText(look_.text);
    // A label doesn't tell of its text in every version of Qt; any widget does of its name.
    setAccessibleName(look_.text);
    announce();
    update();
}

/// Screen readers say the new name of what has the focus, but of nothing else.
void ProtectedState::announce() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    if (isVisible() && !hasFocus()) {
        QAccessibleAnnouncementEvent announcement(this, look_.text);
        QAccessible::updateAccessibility(&announcement);
    }
#endif
}

QSize ProtectedState::sizeHint() const {
    const auto content = std::max(iconSize_, static_cast<double>(fontMetrics().height()));
    const auto width = 4 * padding + iconSize_ + 2 * padding + fontMetrics().horizontalAdvance(look_.text);
    return {static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(content + 4 * padding))};
}

QSize ProtectedState::minimumSizeHint() const {
    return {static_cast<int>(std::ceil(6 * padding + iconSize_)), sizeHint().height()};
}

void ProtectedState::paintEvent(QPaintEvent* /*event*/) {
    const auto [box, icon, text] = ProtectedGeometry::of(size(), iconSize_, layoutDirection());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousRoundedRect(box, cornerRadius), look_.boxColor);
    symbol_.paint(painter, icon, SystemColors::white);
    painter.setPen(SystemColors::white);
    const auto leading = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignAbsolute;
    // A text reads in its own direction, whichever the window's is.
    painter.setLayoutDirection(look_.text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(text, static_cast<int>(leading | Qt::AlignVCenter) | Qt::TextSingleLine,
                     fontMetrics().elidedText(look_.text, Qt::ElideRight, static_cast<int>(text.width())));
}

} // namespace quorvale::ui::menu
