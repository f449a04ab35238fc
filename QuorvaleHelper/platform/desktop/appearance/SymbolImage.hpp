#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

class QPainter;
class QSvgRenderer;

namespace quorvale::platform::desktop {

/// A vector drawing (SVG), shown as large as its rectangle allows with its proportions kept, in the middle of it.
/// What lies outside of the drawing stays transparent. GUI thread.
class SymbolImage {
public:
    /// `path` names a file or an embedded resource. A drawing that can't be read is invalid and paints nothing.
    explicit SymbolImage(const QString& path);
    ~SymbolImage();
    SymbolImage(SymbolImage&&) noexcept;
    SymbolImage& operator=(SymbolImage&&) noexcept;

    [[nodiscard]] bool isValid() const;
    /// The size that the drawing gives itself, in points.
    [[nodiscard]] QSizeF naturalSize() const;

    /// Paints into `rect`, in the painter's logical coordinates, with every opaque place in `tint`. The drawing is
    /// made at the resolution of the device, so it is sharp at any scale.
    void paint(QPainter& painter, const QRectF& rect, const QColor& tint) const;

    /// The drawing in an image of `size` pixels, tinted or else in its own colours.
    [[nodiscard]] QImage image(QSize size, std::optional<QColor> tint = std::nullopt) const;

private:
    [[nodiscard]] QImage render(QSize size, const QRectF& target, std::optional<QColor> tint) const;

    std::unique_ptr<QSvgRenderer> renderer_;
};

} // namespace quorvale::platform::desktop
