#include "platform/desktop/appearance/SymbolImage.hpp"

#include <QPainter>
#include <QSvgRenderer>

namespace quorvale::platform::desktop {

SymbolImage::SymbolImage(const QString& path) : renderer_(std::make_unique<QSvgRenderer>(path)) {
    renderer_->setAspectRatioMode(Qt::KeepAspectRatio);
}

SymbolImage::~SymbolImage() = default;
SymbolImage::SymbolImage(SymbolImage&&) noexcept = default;
SymbolImage& SymbolImage::operator=(SymbolImage&&) noexcept = default;

bool SymbolImage::isValid() const {
    return renderer_->isValid();
}

QSizeF SymbolImage::naturalSize() const {
    return renderer_->defaultSize();
}

void SymbolImage::paint(QPainter& painter, const QRectF& rect, const QColor& tint) const {
    const auto toDevice = painter.deviceTransform();
    const auto exact = toDevice.mapRect(rect);
    const auto pixels = exact.toAlignedRect();
    const auto drawing = render(pixels.size(), exact.translated(-pixels.topLeft()), tint);
    painter.drawImage(toDevice.inverted().mapRect(QRectF(pixels)), drawing);
}

QImage SymbolImage::image(QSize size, std::optional<QColor> tint) const {
    return render(size, QRectF({}, size), tint);
}

QImage SymbolImage::render(QSize size, const QRectF& target, std::optional<QColor> tint) const {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (!isValid()) {
        return image;
    }
    QPainter painter(&image);
    renderer_->render(&painter, target);
    if (tint) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), *tint);
    }
    return image;
}

} // namespace quorvale::platform::desktop
