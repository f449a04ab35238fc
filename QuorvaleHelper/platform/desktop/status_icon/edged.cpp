#include "platform/desktop/status_icon/edged.hpp"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorvale::platform::desktop {

namespace {

constexpr QRgb light = 0x00FFFFFF; // without alpha
constexpr QRgb dark = 0x00061838;
constexpr int pixelsPerEdgePixel = 24; // of the picture's height
constexpr int leastInside = 4;
constexpr int opaque = 128;

/// How far each pixel of a picture is from the nearest opaque one, row by row; `far` or more where that is farther.
std::vector<double> distances(const QImage& picture, int far) {
    const auto width = picture.width();
    const auto height = picture.height();
    // First the distance within the row.
    std::vector<int> inRow;
    inRow.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const auto at = [&](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0, last = far; x < width; ++x, last = std::min(last + 1, far)) {
            last = qAlpha(picture.pixel(x, y)) >= opaque ? 0 : last;
            inRow.push_back(last);
        }
        for (int x = width - 2; x >= 0; --x) {
            inRow[at(x, y)] = std::min(inRow[at(x, y)], inRow[at(x + 1, y)] + 1);
        }
    }
    std::vector<double> nearest;
    nearest.reserve(inRow.size());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            auto square = far * far;
            for (int row = std::max(y - far, 0); row <= std::min(y + far, height - 1); ++row) {
                square = std::min(square, inRow[at(x, row)] * inRow[at(x, row)] + (row - y) * (row - y));
            }
            nearest.push_back(std::sqrt(square));
        }
    }
    return nearest;
}

/// How much of a pixel at `distance` an edge covers that goes as far as `radius`; only its round corners are smoothed.
int coverage(double distance, int radius) {
    return static_cast<int>(std::lround(255 * std::clamp(radius + 1 - distance, 0.0, 1.0)));
}

QRgb over(QRgb upper, QRgb lower) {
    const auto rest = 255 - qAlpha(upper);
    const auto channel = [&](int above, int below) { return above + (below * rest + 127) / 255; };
    return qRgba(channel(qRed(upper), qRed(lower)), channel(qGreen(upper), qGreen(lower)),
                 channel(qBlue(upper), qBlue(lower)), channel(qAlpha(upper), qAlpha(lower)));
}

} // namespace

QImage edged(QSize size, const std::function<QImage(QSize)>& draw) {
    const auto edge =
        std::max(1, static_cast<int>(std::lround(static_cast<double>(size.height()) / pixelsPerEdgePixel)));
    const auto inside = size.scaled(size - 4 * QSize(edge, edge), Qt::KeepAspectRatio);
    if (inside.width() < leastInside || inside.height() < leastInside) {
        return draw(size);
    }
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter(&picture).drawImage((size.width() - inside.width()) / 2, (size.height() - inside.height()) / 2,
                                 draw(inside));

    const auto fromShape = distances(picture, 2 * edge + 1);
    auto distance = fromShape.begin();
    for (int y = 0; y < size.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (auto* pixel = row; pixel != row + size.width(); ++pixel, ++distance) {
            const auto edges = over(qPremultiply(dark | static_cast<QRgb>(coverage(*distance, edge)) << 24U),
                                    qPremultiply(light | static_cast<QRgb>(coverage(*distance, 2 * edge)) << 24U));
            // The edge is closed and crisp because what would blur into it is left out.
            *pixel = over(qAlpha(*pixel) < opaque ? 0 : *pixel, edges);
        }
    }
    return picture;
}

} // namespace quorvale::platform::desktop
