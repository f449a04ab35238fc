#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <span>

namespace quorvale::platform::desktop {

/// One screen of an X11 desktop. `geometry` and `available`, the part that no panel covers, are in logical pixels;
/// their origin is that of the native pixels, as Qt has it.
struct ScreenGeometry {
    QRect geometry;
    QRect available;
    qreal devicePixelRatio = 1;
};

/// Where the user clicked, in logical pixels, from what a panel says: a point in native pixels, in native pixels
/// divided by the panel's own whole scale, or (0, 0). `pointer` is the pointer's place in logical pixels; it decides
/// when the panel's word is of no use.
QPoint anchorPoint(QPoint panelsWord, QPoint pointer, std::span<const ScreenGeometry> screens);

/// The top left corner of a window of `size` that belongs to an icon at `anchor`: beside the panel that the icon is
/// in, centred at the icon as far as the screen allows. Logical pixels.
QPoint panelTopLeft(QPoint anchor, QSize size, const ScreenGeometry& screen);

} // namespace quorvale::platform::desktop
