#include "ui/common/ContinuousCorner.hpp"

#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvale::ui::common {

namespace {

/// How much farther than an arc's the corner reaches along the edges.
constexpr double reach = 1.5;
constexpr int steps = 12;

/// A quarter of a superellipse, from (0, 1) on the left edge to (1, 0) on the upper one, whose middle is where that
/// of the arc would be.
QPointF cornerPoint(int step) {
    static const double exponent = std::log(0.5) / std::log(1 - (1 - std::numbers::sqrt2 / 2) / reach);
    const auto angle = std::numbers::pi / 2 * step / steps;
    return {1 - std::pow(std::sin(std::numbers::pi / 2 - angle), 2 / exponent),
            1 - std::pow(std::sin(angle), 2 / exponent)};
}

} // namespace

QPainterPath continuousRoundedRect(const QRectF& rect, double radius) {
    const auto extent = std::min({radius * reach, rect.width() / 2, rect.height() / 2});

    // Each corner is the first one, mirrored; every other one is run through backwards.
    struct Corner {
        QPointF at;
        double right;
        double down;
    };

    QPolygonF polygon;
    for (const auto& [at, right, down] : {Corner{rect.topLeft(), 1, 1},
                                          {rect.topRight(), -1, 1},
                                          {rect.bottomRight(), -1, -1},
                                          {rect.bottomLeft(), 1, -1}}) {
        for (int step = 0; step <= steps; ++step) {
            const auto point = cornerPoint(right == down ? step : steps - step) * extent;
            polygon << at + QPointF(point.x() * right, point.y() * down);
        }
    }
    QPainterPath path;
    path.addPolygon(polygon);
    path.closeSubpath();
    return path;
}

} // namespace quorvale::ui::common
