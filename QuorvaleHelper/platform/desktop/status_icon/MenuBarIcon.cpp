#include "platform/desktop/status_icon/MenuBarIcon.hpp"

#include "platform/desktop/appearance/SymbolImage.hpp"
#include "platform/desktop/status_icon/edged.hpp"

#include <QIconEngine>
#include <QPainter>

#include <array>
#include <cmath>
#include <memory>
#include <utility>

namespace quorvale::platform::desktop {

namespace {

constexpr double labelHeight = 18;
constexpr double longestRatio = 16;

// The label's height at the usual scales, then the icon sizes that panels have by themselves: one that finds its
// own doesn't scale a picture of another.
constexpr std::array imageHeights{18, 22, 23, 27, 36, 54, 16, 24, 32, 48, 64};

QList<QSize> imageSizes(QSizeF size) {
    QList<QSize> sizes;
    for (const auto height : imageHeights) {
        sizes.push_back({std::max(1, static_cast<int>(std::lround(size.width() / labelHeight * height))), height});
    }
    return sizes;
}

MenuBarIcon withEdges(QSizeF size, std::function<QImage(QSize)> draw) {
    return {size, [draw = std::move(draw)](QSize pixels) { return edged(pixels, draw); }};
}

class DrawnIcon final : public QIconEngine {
public:
    explicit DrawnIcon(MenuBarIcon icon) : icon_(std::move(icon)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const auto picture = pixmap(rect.size() * painter->device()->devicePixelRatio(), mode, state);
        QRect place({}, icon_.size.scaled(rect.size(), Qt::KeepAspectRatio).toSize());
        place.moveCenter(rect.center());
        painter->drawPixmap(place, picture);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const auto fitting = icon_.size.scaled(size, Qt::KeepAspectRatio).toSize();
        return QPixmap::fromImage(icon_.draw(fitting.expandedTo({1, 1})));
    }

    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return imageSizes(icon_.size);
    }

    [[nodiscard]] QIconEngine* clone() const override { return new DrawnIcon(icon_); }

private:
    const MenuBarIcon icon_;
};

} // namespace

std::optional<QSizeF> menuBarIconSize(QSizeF natural) {
    const auto ratio = natural.height() / natural.width();
    if (natural.isEmpty() || !std::isfinite(ratio) || ratio > longestRatio || ratio < 1 / longestRatio) {
        return std::nullopt;
    }
    return QSizeF(labelHeight / ratio, labelHeight);
}

std::expected<MenuBarIcon, QString> MenuBarIcon::load(const QString& path) {
    const auto drawing = std::make_shared<const SymbolImage>(path);
    if (!drawing->isValid()) {
        return std::unexpected(QStringLiteral("%1 can't be read").arg(path));
    }
    const auto size = menuBarIconSize(drawing->naturalSize());
    if (!size) {
        return std::unexpected(QStringLiteral("%1 has no usable size").arg(path));
    }
    return withEdges(*size, [drawing](QSize pixels) { return drawing->image(pixels); });
}

MenuBarIcon MenuBarIcon::fromSymbol(const QString& path, const QColor& tint) {
    const auto drawing = std::make_shared<const SymbolImage>(path);
    const auto size = menuBarIconSize(drawing->naturalSize()).value_or(QSizeF(labelHeight, labelHeight));
    return withEdges(size, [drawing, tint](QSize pixels) { return drawing->image(pixels, tint); });
}

QList<QImage> MenuBarIcon::images() const {
    QList<QImage> images;
    for (const auto& pixels : imageSizes(size)) {
        images.push_back(draw(pixels));
    }
    return images;
}

QIcon MenuBarIcon::icon() const {
    return QIcon(new DrawnIcon(*this));
}

} // namespace quorvale::platform::desktop
