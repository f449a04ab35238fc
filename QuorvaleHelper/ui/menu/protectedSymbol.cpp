#include "ui/menu/protectedSymbol.hpp"

#include "ui/common/ContinuousCorner.hpp"
#include "ui/menu/ProtectedState.hpp"
#include "ui/menu/SystemColors.hpp"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include <utility>

namespace quorvale::ui::menu {

namespace {

/// Drawn when it is asked for: most sessions never see it.
class Engine final : public QIconEngine {
public:
    explicit Engine(ProtectedLook look) : look_(std::move(look)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        painter->setRenderHint(QPainter::Antialiasing);
        const QRectF box(rect);
        painter->fillPath(common::continuousRoundedRect(box, box.width() / 4), look_.boxColor);
        const auto margin = box.width() / 8;
        platform::desktop::SymbolImage(look_.symbol)
            .paint(*painter, box.adjusted(margin, margin, -margin, -margin), SystemColors::white);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new Engine(*this); }

private:
    ProtectedLook look_;
};

} // namespace

QIcon protectedSymbol(const ProtectedLook& look) {
    return QIcon(new Engine(look));
}

} // namespace quorvale::ui::menu
