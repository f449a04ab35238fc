#pragma once

#include "platform/desktop/windows/PanelActivation.hpp"

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <span>

class QScreen;

namespace quorvale::platform::desktop {

/// One screen of an X11 desktop. `geometry` and `available`, the part that no panel covers, are in logical pixels;
/// their origin is that of the native pixels, as Qt has it.
struct ScreenGeometry {
    QRect geometry;
    QRect available;
    qreal devicePixelRatio = 1;

    static ScreenGeometry of(const QScreen& screen);

    /// The screen at `place`, or else the primary one. GUI thread.
    static ScreenGeometry at(QPoint place);
};

/// Where the icon is that the user has activated, in logical pixels. The pointer, at `pointer` in logical pixels,
/// decides when the activation came from it, which is also taken for granted while it stands where the screen is
/// covered by a panel. Otherwise the panel's word does: a point in native pixels, or in native pixels divided by the
/// panel's own whole scale. Some panels say (0, 0), or count from a corner of their own: the pointer decides again when
/// the word is of no use.
QPoint anchorPoint(QPoint panelsWord, PanelActivation activation, QPoint pointer,
                   std::span<const ScreenGeometry> screens);

/// The top left corner of a window of `size` that belongs to an icon at `anchor`: beside the panel that the icon is
/// in, centred at the icon as far as the screen allows. Logical pixels.
QPoint panelTopLeft(QPoint anchor, QSize size, const ScreenGeometry& screen);

/// The corner of the screen in which panels have their icons where texts run in `direction`: the lower one if only the
/// lower edge is covered by a panel.
QPoint iconCorner(const ScreenGeometry& screen, Qt::LayoutDirection direction);

/// Where a window stands on a Wayland desktop: at two edges of the screen, in their corner, or off it by the margins.
struct LayerPlace {
    Qt::Edges edges;
    QMargins margins;
};

/// The place of a window of `size` that belongs to an icon at `panelsWord`, in logical pixels of `screen`: at the edge
/// that is next to the icon, and as near to it as the screen allows. The panels there count from a corner of their own,
/// if they say anything but (0, 0): a word that isn't beside an edge gives the upper corner where most of them have
/// their icons, which is the left one where texts run from right to left.
LayerPlace layerPlace(QPoint panelsWord, QSize size, QRect screen, Qt::LayoutDirection direction);

} // namespace quorvale::platform::desktop
