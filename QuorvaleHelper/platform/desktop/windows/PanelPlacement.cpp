#include "platform/desktop/windows/PanelPlacement.hpp"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <array>
#include <optional>

namespace quorvale::platform::desktop {

namespace {

constexpr int gap = 4;
/// How far the pointer may have moved, in logical pixels, since the panel looked.
constexpr int tolerance = 8;

QRect nativeGeometry(const ScreenGeometry& screen) {
    return {screen.geometry.topLeft(), (QSizeF(screen.geometry.size()) * screen.devicePixelRatio).toSize()};
}

QPoint toLogical(QPointF point, const ScreenGeometry& screen) {
    const auto origin = screen.geometry.topLeft();
    return origin + ((point - origin) / screen.devicePixelRatio).toPoint();
}

/// As std::clamp, but with the lower limit where there is no room.
int within(int value, int low, int high) {
    return std::max(low, std::min(value, high));
}

} // namespace

ScreenGeometry ScreenGeometry::of(const QScreen& screen) {
    return {screen.geometry(), screen.availableGeometry(), screen.devicePixelRatio()};
}

ScreenGeometry ScreenGeometry::at(QPoint place) {
    const auto* const screen = QGuiApplication::screenAt(place);
    return of(screen ? *screen : *QGuiApplication::primaryScreen());
}

QPoint anchorPoint(QPoint panelsWord, PanelActivation activation, QPoint pointer,
                   std::span<const ScreenGeometry> screens) {
    const auto pointersScreen =
        std::ranges::find_if(screens, [&](const auto& screen) { return screen.geometry.contains(pointer); });
    const auto pointerIsOnPanel = pointersScreen != screens.end() && !pointersScreen->available.contains(pointer);
    if (panelsWord.isNull() || activation == PanelActivation::ByPointer ||
        (activation == PanelActivation::Unknown && pointerIsOnPanel)) {
        return pointer;
    }
    std::optional<QPoint> onScreen;
    for (const auto scale : std::array{1, 2, 3}) {
        // In qreal: a peer's numbers may be anything.
        const auto native = QPointF(panelsWord) * scale;
        for (const auto& screen : screens) {
            if (!QRectF(nativeGeometry(screen)).contains(native)) {
                continue;
            }
            const auto place = toLogical(native, screen);
            if ((place - pointer).manhattanLength() <= tolerance) {
                return pointer;
            }
            if (!screen.available.contains(place)) {
                return place;
            }
            onScreen = onScreen.value_or(place);
        }
    }
    return onScreen.value_or(pointer);
}

QPoint panelTopLeft(QPoint anchor, QSize size, const ScreenGeometry& screen) {
    const auto& free = screen.available;
    const auto left = free.left() + gap;
    const auto top = free.top() + gap;
    const auto right = free.x() + free.width() - size.width() - gap;
    const auto bottom = free.y() + free.height() - size.height() - gap;
    const auto centredX = within(anchor.x() - size.width() / 2, left, right);
    const auto centredY = within(anchor.y() - size.height() / 2, top, bottom);
    if (anchor.y() < free.top()) {
        return {centredX, top};
    }
    if (anchor.y() > free.bottom()) {
        return {centredX, within(bottom, top, bottom)};
    }
    if (anchor.x() < free.left()) {
        return {left, centredY};
    }
    if (anchor.x() > free.right()) {
        return {within(right, left, right), centredY};
    }
    // The panel reserves no room, so its edge is not known: away from the nearer of the upper and the lower edge.
    constexpr int panelHeight = 16;
    const auto above = anchor.y() - panelHeight - size.height();
    const auto below = anchor.y() + panelHeight;
    const auto inUpperHalf = anchor.y() < screen.geometry.center().y();
    return {centredX, within(inUpperHalf ? below : above, top, bottom)};
}

QPoint iconCorner(const ScreenGeometry& screen, Qt::LayoutDirection direction) {
    const auto& [all, free, _] = screen;
    const auto isBelow = free.bottom() < all.bottom() && free.top() == all.top();
    return {direction == Qt::RightToLeft ? all.left() : all.right(), isBelow ? all.bottom() : all.top()};
}

LayerPlace layerPlace(QPoint panelsWord, QSize size, QRect screen, Qt::LayoutDirection direction) {
    /// The thickest panel.
    constexpr int reach = 96;
    const auto corner = direction == Qt::RightToLeft ? LayerPlace{Qt::TopEdge | Qt::LeftEdge, {gap, gap, 0, 0}}
                                                     : LayerPlace{Qt::TopEdge | Qt::RightEdge, {0, gap, gap, 0}};
    // First of all: a peer's numbers may be anything, and what is off the screen too far off to reckon with.
    if (panelsWord.isNull() || !screen.contains(panelsWord)) {
        return corner;
    }
    const auto left = panelsWord.x() - screen.left();
    const auto top = panelsWord.y() - screen.top();
    const auto right = screen.right() - panelsWord.x();
    const auto bottom = screen.bottom() - panelsWord.y();
    if (std::min({left, top, right, bottom}) > reach) {
        return corner;
    }
    // In a corner either edge is as good, for the compositor keeps the window off the panel.
    if (std::min(top, bottom) <= reach) {
        const auto offset = within(left - size.width() / 2, gap, screen.width() - size.width() - gap);
        return top < bottom ? LayerPlace{Qt::TopEdge | Qt::LeftEdge, {offset, gap, 0, 0}}
                            : LayerPlace{Qt::BottomEdge | Qt::LeftEdge, {offset, 0, 0, gap}};
    }
    const auto offset = within(top - size.height() / 2, gap, screen.height() - size.height() - gap);
    return left < right ? LayerPlace{Qt::LeftEdge | Qt::TopEdge, {gap, offset, 0, 0}}
                        : LayerPlace{Qt::RightEdge | Qt::TopEdge, {0, offset, gap, 0}};
}

} // namespace quorvale::platform::desktop
