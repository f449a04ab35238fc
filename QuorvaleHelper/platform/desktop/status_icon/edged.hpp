#pragma once

#include <QImage>
#include <QSize>

#include <functional>

namespace quorvale::platform::desktop {

/// A picture of `size` pixels in which what `draw` makes has a closed dark edge, and around that a light one: one of
/// them stands out from a ground of any colour. `draw` is asked for a picture that is smaller, in the same proportions.
/// A size that has no room for edges is drawn without.
QImage edged(QSize size, const std::function<QImage(QSize)>& draw);

} // namespace quorvale::platform::desktop
