#include "ui/menu/MenuButtonStyle.hpp"

#include "ui/common/ContinuousCorner.hpp"
#include "ui/menu/MenuButton.hpp"
#include "ui/menu/SystemColors.hpp"

#include <QPainter>

namespace quorvale::ui::menu {

namespace {

using common::continuousRoundedRect;

constexpr double cornerRadius = 5;
constexpr double ringWidth = 2;

} // namespace

MenuButtonStyle::Look MenuButtonStyle::look(bool hovering, const QPalette& palette) {
    return hovering ? Look{SystemColors::white, SystemColors::blue}
                    : Look{palette.color(QPalette::WindowText), Qt::transparent};
}

void MenuButtonStyle::paint(QPainter& painter, const QRectF& frame, const QString& label, const QPalette& palette,
                            Focus focus) const {
    const auto [textColor, background] = look(hovering_, palette);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousRoundedRect(frame, cornerRadius), background);
    if (focus == Focus::Keyboard) {
        const auto ring = SystemColors::focusRing(hovering_ ? background : palette.color(QPalette::Window));
        constexpr auto inset = ringWidth / 2;
        painter.strokePath(continuousRoundedRect(frame.adjusted(inset, inset, -inset, -inset), cornerRadius - inset),
                           QPen(ring, ringWidth));
    }
    const auto text =
        frame.adjusted(MenuButton::padding, MenuButton::padding, -MenuButton::padding, -MenuButton::padding);
    painter.setPen(textColor);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(label, Qt::ElideRight, static_cast<int>(text.width())));
}

} // namespace quorvale::ui::menu
