#include "ui/menu/MenuButtonStyle.hpp"

#include "ui/common/ContinuousCorner.hpp"
#include "ui/common/FocusRing.hpp"
#include "ui/menu/MenuButton.hpp"
#include "ui/menu/SystemColors.hpp"

#include <QPainter>
#include <QStyle>

namespace quorvale::ui::menu {

namespace {

using common::continuousRoundedRect;

constexpr double cornerRadius = 5;

} // namespace

MenuButtonStyle::Look MenuButtonStyle::look(bool hovering, const QPalette& palette) {
    return hovering ? Look{SystemColors::white, SystemColors::blue}
                    : Look{palette.color(QPalette::WindowText), Qt::transparent};
}

void MenuButtonStyle::paint(QPainter& painter, const QRectF& frame, const QString& label, Qt::LayoutDirection direction,
                            const QPalette& palette, Focus focus) const {
    const auto [textColor, background] = look(hovering_, palette);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousRoundedRect(frame, cornerRadius), background);
    if (focus == Focus::Keyboard) {
        const auto window = palette.color(QPalette::Window);
        common::paintFocusRing(painter, frame, cornerRadius, hovering_ ? background : window, window);
    }
    const auto text =
        frame.adjusted(MenuButton::padding, MenuButton::padding, -MenuButton::padding, -MenuButton::padding);
    painter.setPen(textColor);
    const auto leading = QStyle::visualAlignment(direction, Qt::AlignLeft) | Qt::AlignAbsolute;
    // A text reads in its own direction, whichever the window's is.
    painter.setLayoutDirection(label.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(text, static_cast<int>(leading | Qt::AlignVCenter) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(label, Qt::ElideRight, static_cast<int>(text.width())));
}

} // namespace quorvale::ui::menu
