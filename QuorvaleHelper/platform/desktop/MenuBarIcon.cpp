#include "platform/desktop/MenuBarIcon.hpp"

#include "platform/desktop/SymbolImage.hpp"

#include <QImageReader>

#include <array>
#include <cmath>

namespace quorvale::platform::desktop {

namespace {

constexpr double labelHeight = 18;
constexpr double longestRatio = 16;

// The label's height at the usual scales, then the icon sizes that panels have by themselves: one that finds its
// own doesn't scale a picture of another.
constexpr std::array imageHeights{18, 22, 23, 27, 36, 54, 16, 24, 32, 48, 64};

template <typename Render>
QList<QImage> renderAll(QSizeF size, Render render) {
    QList<QImage> images;
    for (const auto height : imageHeights) {
        const auto width = std::max(1, static_cast<int>(std::lround(size.width() / labelHeight * height)));
        images.push_back(render(QSize(width, height)));
    }
    return images;
}

} // namespace

std::optional<QSizeF> menuBarIconSize(QSizeF natural) {
    const auto ratio = natural.height() / natural.width();
    if (natural.isEmpty() || !std::isfinite(ratio) || ratio > longestRatio || ratio < 1 / longestRatio) {
        return std::nullopt;
    }
    return QSizeF(labelHeight / ratio, labelHeight);
}

std::expected<MenuBarIcon, QString> MenuBarIcon::load(const QString& path) {
    const auto unusable = [&] { return std::unexpected(QStringLiteral("%1 has no usable size").arg(path)); };
    // Named by its ending only: the reader for other formats would hand an SVG out as pixels.
    if (path.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive)) {
        const SymbolImage drawing(path);
        if (!drawing.isValid()) {
            return std::unexpected(QStringLiteral("%1 can't be read").arg(path));
        }
        const auto size = menuBarIconSize(drawing.naturalSize());
        if (!size) {
            return unusable();
        }
        return MenuBarIcon{*size, renderAll(*size, [&](QSize pixels) { return drawing.image(pixels); })};
    }
    QImageReader reader(path);
    const auto picture = reader.read();
    if (picture.isNull()) {
        return std::unexpected(QStringLiteral("%1 can't be read: %2").arg(path, reader.errorString()));
    }
    const auto size = menuBarIconSize(picture.size());
    if (!size) {
        return unusable();
    }
    return MenuBarIcon{*size, renderAll(*size, [&](QSize pixels) {
                           return picture.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
                       })};
}

MenuBarIcon MenuBarIcon::fromSymbol(const QString& path, const QColor& tint) {
    const SymbolImage drawing(path);
    const auto size = menuBarIconSize(drawing.naturalSize()).value_or(QSizeF(labelHeight, labelHeight));
    return {size, renderAll(size, [&](QSize pixels) { return drawing.image(pixels, tint); })};
}

QIcon MenuBarIcon::icon() const {
    QIcon icon;
    for (const auto& image : images) {
        icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

} // namespace quorvale::platform::desktop
