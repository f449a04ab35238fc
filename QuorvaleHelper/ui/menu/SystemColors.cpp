#include "ui/menu/SystemColors.hpp"

#include <algorithm>
#include <cmath>

namespace quorvale::ui::menu::SystemColors {

namespace {

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

QColor focusRing(const QColor& background) {
    constexpr QColor lightBlue{0x7C, 0xBB, 0xFF};
    return contrast(blue, background) >= contrast(lightBlue, background) ? blue : lightBlue;
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace quorvale::ui::menu::SystemColors
