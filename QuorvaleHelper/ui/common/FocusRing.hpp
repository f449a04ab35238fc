#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace quorvale::ui::common {

/// From 1 (the same) to 21 (black and white). https://www.w3.org/TR/WCAG21/#dfn-contrast-ratio
double contrast(const QColor& one, const QColor& other);

/// The colour of a ring around a focused control, between two grounds: a blue if one stands out from both by 3 to 1,
/// else black or white.
QColor focusRingColor(const QColor& inside, const QColor& outside);

/// Paints the ring of the keyboard's focus into the edge of `frame`, in points, round at the corners.
void paintFocusRing(QPainter& painter, const QRectF& frame, double cornerRadius, const QColor& inside,
                    const QColor& outside);

} // namespace quorvale::ui::common
