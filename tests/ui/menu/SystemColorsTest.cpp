#include "ui/menu/SystemColors.hpp"

#include "platform/desktop/status_icon/MenuBarIcon.hpp"

#include <gtest/gtest.h>

namespace quorvale::ui::menu {

TEST(SystemColorsTest, MeasureContrastFromNoneToBlackOnWhite) {
    EXPECT_NEAR(SystemColors::contrast(Qt::black, Qt::white), 21, 0.01);
    EXPECT_NEAR(SystemColors::contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.01);
    EXPECT_DOUBLE_EQ(SystemColors::contrast(Qt::red, Qt::red), 1);
}

TEST(SystemColorsTest, CarryReadableWhiteText) {
    for (const auto& color : {SystemColors::green, SystemColors::red, SystemColors::blue}) {
        EXPECT_GE(SystemColors::contrast(SystemColors::white, color), 4.5) << qPrintable(color.name());
    }
}

TEST(SystemColorsTest, ShowTheFocusRingOnAnyBackground) {
    for (const auto& background :
         {QColor(Qt::white), QColor(0xEF, 0xEF, 0xEF), QColor(0x2B, 0x2B, 0x2D), QColor(Qt::black)}) {
        EXPECT_GE(SystemColors::contrast(SystemColors::focusRing(background), background), 3)
            << qPrintable(background.name());
    }
    EXPECT_NE(SystemColors::focusRing(SystemColors::blue), SystemColors::blue);
}

TEST(SystemColorsTest, LetTheMenuBarIconStandOutOnLightAndDarkPanels) {
    const auto icon = platform::desktop::MenuBarIcon::load(QStringLiteral(QUORVALE_MENU_BAR_ICON));
    ASSERT_TRUE(icon) << qPrintable(icon.error());
    EXPECT_EQ(icon->size, QSizeF(18, 18));
    for (const auto& image : icon->images()) {
        // Beside the padlock, which is light, and inside of the smoothed edge.
        for (const auto& [x, y] : {std::pair(0.22, 0.4), {0.78, 0.4}, {0.5, 0.8}}) {
            const auto shield =
                image.pixelColor(static_cast<int>(x * image.width()), static_cast<int>(y * image.height()));
            EXPECT_EQ(shield.alpha(), 255);
            EXPECT_GE(SystemColors::contrast(shield, Qt::white), 3);
            EXPECT_GE(SystemColors::contrast(shield, QColor(0x1E, 0x1E, 0x1E)), 3);
        }
        const auto padlock = image.pixelColor(image.width() / 2, static_cast<int>(0.6 * image.height()));
        EXPECT_EQ(padlock, QColor(Qt::white));
    }
}

} // namespace quorvale::ui::menu
