#include "ui/menu/protectedSymbol.hpp"

#include "ui/common/ContinuousCorner.hpp"
#include "ui/menu/ProtectedState.hpp"
#include "ui/menu/SystemColors.hpp"

#include <QPainter>
#include <QPixmap>

namespace quorvale::ui::menu {

QIcon protectedSymbol(const ProtectedLook& look) {
    const platform::desktop::SymbolImage symbol(look.symbol);
    QIcon icon;
    // Those that menus have at the usual scales.
    for (const int size : {16, 22, 24, 32, 48}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF box(pixmap.rect());
        painter.fillPath(common::continuousRoundedRect(box, box.width() / 4), look.boxColor);
        const auto margin = box.width() / 8;
        symbol.paint(painter, box.adjusted(margin, margin, -margin, -margin), SystemColors::white);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace quorvale::ui::menu
