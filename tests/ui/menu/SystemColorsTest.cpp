#include "ui/menu/SystemColors.hpp"

#include "platform/desktop/status_icon/MenuBarIcon.hpp"
#include "ui/common/FocusRing.hpp"

#include <QPainter>
#include <gtest/gtest.h>

#include <vector>

namespace quorvale::ui::menu {

namespace {

using common::contrast;

constexpr double enough = 3;

/// Whether the eye, for which less than `enough` is one, gets from around `picture` on `ground` to its pixel `to`.
bool melts(const QImage& picture, const QColor& ground, QPoint to) {
    QImage seen(picture.size() + QSize(2, 2), QImage::Format_RGB32);
    seen.fill(ground);
    QPainter(&seen).drawImage(1, 1, picture);
    std::vector<QPoint> reached{{0, 0}};
    QImage isReached(seen.size(), QImage::Format_Grayscale8);
    isReached.fill(Qt::black);
    while (!reached.empty()) {
        const auto at = reached.back();
        reached.pop_back();
        if (!seen.rect().contains(at) || qGray(isReached.pixel(at)) != 0 ||
            contrast(seen.pixelColor(at), ground) >= enough) {
            continue;
        }
        isReached.setPixelColor(at, Qt::white);
        for (const auto& step : {QPoint(1, 0), {-1, 0}, {0, 1}, {0, -1}}) {
            reached.push_back(at + step);
        }
    }
    return qGray(isReached.pixel(to + QPoint(1, 1))) != 0;
}

} // namespace

TEST(SystemColorsTest, MeasureContrastFromNoneToBlackOnWhite) {
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.01);
    EXPECT_NEAR(contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.01);
    EXPECT_DOUBLE_EQ(contrast(Qt::red, Qt::red), 1);
}

TEST(SystemColorsTest, CarryReadableWhiteText) {
    for (const auto& color : {SystemColors::green, SystemColors::red, SystemColors::blue}) {
        EXPECT_GE(contrast(SystemColors::white, color), 4.5) << qPrintable(color.name());
    }
}

TEST(SystemColorsTest, ShowTheFocusRingOnAnyGround) {
    for (int gray = 0; gray < 256; ++gray) {
        const QColor ground(gray, gray, gray);
        EXPECT_GE(contrast(common::focusRingColor(ground, ground), ground), enough) << gray;
    }
    // Of a light, a dark and two high-contrast palettes: a control and the window around it.
    const std::pair<QColor, QColor> cases[] = {{Qt::white, QColor(0xEF, 0xF0, 0xF1)},
                                               {QColor(0x23, 0x26, 0x29), QColor(0x31, 0x36, 0x3B)},
                                               {SystemColors::blue, QColor(0xEF, 0xF0, 0xF1)},
                                               {SystemColors::blue, QColor(0x31, 0x36, 0x3B)},
                                               {SystemColors::blue, Qt::black},
                                               {Qt::black, Qt::black},
                                               {Qt::black, Qt::white},
                                               {Qt::yellow, Qt::black}};
    for (const auto& [inside, outside] : cases) {
        const auto ring = common::focusRingColor(inside, outside);
        EXPECT_GE(contrast(ring, inside), enough) << qPrintable(inside.name()) << " in " << qPrintable(outside.name());
        EXPECT_GE(contrast(ring, outside), enough) << qPrintable(inside.name()) << " in " << qPrintable(outside.name());
    }
}

TEST(SystemColorsTest, LetTheMenuBarIconStandOutFromPanelsOfAnyColor) {
    const auto icon = platform::desktop::MenuBarIcon::load(QStringLiteral(QUORVALE_MENU_BAR_ICON));
    ASSERT_TRUE(icon) << qPrintable(icon.error());
    EXPECT_EQ(icon->size, QSizeF(18, 18));
    std::vector<QColor> grounds;
    for (int shade = 0; shade < 256; shade += 15) {
        for (const auto hue : {-1, 0, 60, 120, 210, 300}) {
            grounds.push_back(QColor::fromHsv(hue, hue < 0 ? 0 : 200, shade));
        }
    }
    for (const auto& image : icon->images()) {
        const auto at = [&](double x, double y) {
            return QPoint(static_cast<int>(x * image.width()), static_cast<int>(y * image.height()));
        };
        EXPECT_EQ(image.pixelColor(at(0.5, 0.55)), QColor(Qt::white)) << "the padlock";
        const auto shield = at(0.5, 0.78);
        grounds.push_back(image.pixelColor(shield));
        for (const auto& ground : grounds) {
            EXPECT_FALSE(melts(image, ground, shield)) << image.height() << ' ' << qPrintable(ground.name());
        }
    }
}

} // namespace quorvale::ui::menu
