#include "platform/desktop/windows/LayerBackdrop.hpp"

#include "platform/desktop/windows/LayerShell.hpp"

#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>

namespace quorvale::platform::desktop {

namespace {

class Nothing final : public QRasterWindow {
protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillRect(QRect(QPoint(), size()), Qt::transparent);
    }
};

} // namespace

void LayerBackdrop::raise() {
    remove();
    for (auto* const screen : QGuiApplication::screens()) {
        auto surface = std::make_unique<Nothing>();
        auto format = surface->format();
        format.setAlphaBufferSize(8);
        surface->setFormat(format);
        surface->setScreen(screen);
        surface->installEventFilter(this);
        surface->create();
        if (!coverOnLayer(*surface)) {
            return;
        }
        surface->show();
        surfaces_.push_back(std::move(surface));
    }
}

void LayerBackdrop::remove() {
    // One of them may be the sender of what led here.
    for (auto& surface : surfaces_) {
        surface->hide();
        surface.release()->deleteLater();
    }
    surfaces_.clear();
}

bool LayerBackdrop::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TouchBegin) {
        Q_EMIT pressed();
    }
    return false;
}

} // namespace quorvale::platform::desktop
