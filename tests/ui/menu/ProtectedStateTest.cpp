#include "ui/menu/ProtectedState.hpp"

#include "ui/menu/SystemColors.hpp"

#include <QAccessible>
#include <gtest/gtest.h>

namespace quorvale::ui::menu {

namespace {

constexpr double iconSize = 18;

QImage pictureOf(ProtectedState& view, int width) {
    view.resize(width, view.sizeHint().height());
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    view.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

} // namespace

TEST(ProtectedStateTest, PutsIconAndTextWithTheirPaddingsIntoABoxOfFullWidth) {
    const auto [box, icon, text] = ProtectedGeometry::of({200, 38}, iconSize, Qt::LeftToRight);
    EXPECT_EQ(box, QRectF(5, 5, 190, 28));
    EXPECT_EQ(icon, QRectF(10, 10, 18, 18));
    EXPECT_EQ(text, QRectF(33, 10, 152, 18));
    const auto mirrored = ProtectedGeometry::of({200, 38}, iconSize, Qt::RightToLeft);
    EXPECT_EQ(mirrored.box, box);
    EXPECT_EQ(mirrored.icon, QRectF(172, 10, 18, 18));
    EXPECT_EQ(mirrored.text, QRectF(15, 10, 152, 18));
}

TEST(ProtectedStateTest, ShowsARoundedBoxWithASymbolAndATextInBothLooks) {
    struct Case {
        bool isProtected;
        const char* symbol;
        const char* text;
        QColor color;
    };

    const Case off{false, ":/symbols/lock.circle.dotted.svg", "Unprotected", SystemColors::red};
    const Case on{true, ":/symbols/lock.shield.svg", "Protected", SystemColors::green};
    ProtectedState view(false, iconSize);
    const auto* const accessible = QAccessible::queryAccessibleInterface(&view);
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible->text(QAccessible::Name), QLatin1String(off.text));
    EXPECT_EQ(view.focusPolicy(), Qt::NoFocus);
    for (const auto& [isProtected, symbol, text, color] : {off, on, off}) {
        view.setProtected(isProtected);
        EXPECT_EQ(ProtectedLook::of(isProtected).symbol, QLatin1String(symbol));
        EXPECT_EQ(view.text(), QLatin1String(text));
        EXPECT_EQ(accessible->text(QAccessible::Name), QLatin1String(text));
        const auto image = pictureOf(view, 200);
        EXPECT_EQ(image.pixelColor(4, 19).alpha(), 0);
        EXPECT_EQ(image.pixelColor(5, 5).alpha(), 0) << "the corner is not round";
        for (const auto& inBox : {QPoint(5, 19), QPoint(194, 19), QPoint(100, 5), QPoint(7, 7), QPoint(8, 19)}) {
            EXPECT_EQ(image.pixelColor(inBox), color) << inBox.x() << ',' << inBox.y();
        }
        EXPECT_EQ(image.pixelColor(19, 21), QColor(Qt::white)) << "the padlock";
    }
}

TEST(ProtectedStateTest, CutsATextThatHasNoRoomAndStaysAsNarrowAsAsked) {
    ProtectedState view(false, iconSize);
    EXPECT_LE(view.minimumSizeHint().width(), 48);
    const auto image = pictureOf(view, 60);
    EXPECT_EQ(image.pixelColor(54, 19), SystemColors::red);
    EXPECT_EQ(image.pixelColor(55, 19).alpha(), 0);
}

} // namespace quorvale::ui::menu
