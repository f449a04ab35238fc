#pragma once

#include <QColor>

/// The named colours of the menu window, the same on light and dark desktops. White text on any of them is easy to
/// read: its contrast is at least 4.5 to 1.
namespace quorvale::ui::menu::SystemColors {

inline constexpr QColor green{0x1D, 0x87, 0x3B};
inline constexpr QColor red{0xD7, 0x2C, 0x26};
inline constexpr QColor blue{0x0A, 0x6C, 0xE6};
inline constexpr QColor white{0xFF, 0xFF, 0xFF};

} // namespace quorvale::ui::menu::SystemColors
