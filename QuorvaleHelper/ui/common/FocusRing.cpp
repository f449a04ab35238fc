#include "ui/common/FocusRing.hpp"

#include "ui/common/ContinuousCorner.hpp"

#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace quorvale::ui::common {

namespace {

constexpr QColor blue{0x0A, 0x6C, 0xE6};
constexpr QColor lightBlue{0x7C, 0xBB, 0xFF};
constexpr double enough = 3;
constexpr double width = 2;

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor focusRingColor(const QColor& inside, const QColor& outside) {
    const auto leastContrast = [&](const QColor& ring) {
        return std::min(contrast(ring, inside), contrast(ring, outside));
    };
    const auto betterOf = [&](const QColor& one, const QColor& other) {
        return leastContrast(one) >= leastContrast(other) ? one : other;
    };
    const auto bestBlue = betterOf(blue, lightBlue);
    return leastContrast(bestBlue) >= enough ? bestBlue : betterOf(Qt::black, Qt::white);
}

void paintFocusRing(QPainter& painter, const QRectF& frame, double cornerRadius, const QColor& inside,
                    const QColor& outside) {
    constexpr auto inset = width / 2;
    painter.strokePath(continuousRoundedRect(frame.adjusted(inset, inset, -inset, -inset), cornerRadius - inset),
                       QPen(focusRingColor(inside, outside), width));
}

} // namespace quorvale::ui::common
