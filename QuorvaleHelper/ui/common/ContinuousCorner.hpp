#pragma once

#include <QPainterPath>
#include <QRectF>

namespace quorvale::ui::common {

/// A rectangle whose corners are as round as arcs of `radius`, but whose curvature begins at nothing where they meet
/// the straight edges, so that no seam is seen.
QPainterPath continuousRoundedRect(const QRectF& rect, double radius);

} // namespace quorvale::ui::common
