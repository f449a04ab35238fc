#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QList>
#include <QSizeF>
#include <QString>

#include <expected>
#include <functional>
#include <optional>

namespace quorvale::platform::desktop {

/// The size of a label image in the menu bar, in points: 18 high, as wide as its proportions ask for. No value for
/// a natural size that has no usable proportions: nothing, or more than sixteen times as long as it is high.
std::optional<QSizeF> menuBarIconSize(QSizeF natural);

/// The label image of a menu-bar extra, for panels of any height, scale and colour: what is drawn has a thin edge that
/// is dark, then light.
struct MenuBarIcon {
    /// In points.
    QSizeF size;
    /// Draws it, in pixels.
    std::function<QImage(QSize)> draw;

    /// From the SVG at `path`; an error says what is wrong with it.
    static std::expected<MenuBarIcon, QString> load(const QString& path);

    /// From the SVG at `path`, all in one colour. It is the program's own and can be read.
    static MenuBarIcon fromSymbol(const QString& path, const QColor& tint);

    /// The same picture in several heights; first the one for a panel that doesn't scale.
    [[nodiscard]] QList<QImage> images() const;

    /// Drawn when, and as large as, it is painted.
    [[nodiscard]] QIcon icon() const;
};

} // namespace quorvale::platform::desktop
