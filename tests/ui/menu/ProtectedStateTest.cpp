#include "ui/menu/ProtectedState.hpp"

#include "ui/menu/SystemColors.hpp"

#include <QAccessible>
#include <QCoreApplication>
#include <QTranslator>
#include <gtest/gtest.h>

#include <algorithm>

namespace quorvale::ui::menu {

namespace {

constexpr double iconSize = 18;

class GermanTexts final : public QTranslator {
public:
    GermanTexts() { QCoreApplication::installTranslator(this); }

    [[nodiscard]] QString translate(const char* /*context*/, const char* text, const char* /*disambiguation*/,
                                    int /*n*/) const override {
        return QLatin1String(text) == QLatin1String("Protected") ? QStringLiteral("Geschützt") : QString();
    }

    [[nodiscard]] bool isEmpty() const override { return false; }
};

QImage pictureOf(ProtectedState& view, int width) {
    view.resize(width, view.sizeHint().height());
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    view.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

} // namespace

TEST(ProtectedStateTest, HasTwoLooks) {
    const auto on = ProtectedLook::of(true);
    EXPECT_EQ(on.symbol, QStringLiteral(":/symbols/lock.shield.svg"));
    EXPECT_EQ(on.text, QStringLiteral("Protected"));
    EXPECT_EQ(on.boxColor, SystemColors::green);
    const auto off = ProtectedLook::of(false);
    EXPECT_EQ(off.symbol, QStringLiteral(":/symbols/lock.circle.dotted.svg"));
    EXPECT_EQ(off.text, QStringLiteral("Unprotected"));
    EXPECT_EQ(off.boxColor, SystemColors::red);
}

TEST(ProtectedStateTest, LooksItsTextsUpAndShowsThoseWithoutEntryAsTheyAre) {
    const GermanTexts german;
    EXPECT_EQ(ProtectedLook::of(true).text, QStringLiteral("Geschützt"));
    EXPECT_EQ(ProtectedLook::of(false).text, QStringLiteral("Unprotected"));
}

TEST(ProtectedStateTest, PutsIconAndTextWithTheirPaddingsIntoABoxOfFullWidth) {
    const auto [box, icon, text] = ProtectedGeometry::of({200, 38}, iconSize);
    EXPECT_EQ(box, QRectF(5, 5, 190, 28));
    EXPECT_EQ(icon, QRectF(10, 10, 18, 18));
    EXPECT_EQ(text, QRectF(33, 10, 152, 18));
}

TEST(ProtectedStateTest, PaintsARoundedBoxAndAWhiteSymbolInBothLooks) {
    ProtectedState view(false, iconSize);
    for (const auto isProtected : {false, true, false}) {
        view.setProtected(isProtected);
        const auto image = pictureOf(view, 200);
        const auto color = ProtectedLook::of(isProtected).boxColor;
        EXPECT_EQ(image.pixelColor(4, 19).alpha(), 0);
        EXPECT_EQ(image.pixelColor(5, 5).alpha(), 0) << "the corner is not round";
        for (const auto& inBox : {QPoint(5, 19), QPoint(194, 19), QPoint(100, 5), QPoint(7, 7), QPoint(8, 19)}) {
            EXPECT_EQ(image.pixelColor(inBox), color) << inBox.x() << ',' << inBox.y();
        }
        EXPECT_EQ(image.pixelColor(19, 21), QColor(Qt::white)) << "the padlock";
        EXPECT_EQ(view.text(), ProtectedLook::of(isProtected).text);
    }
}

TEST(ProtectedStateTest, CutsATextThatHasNoRoomAndStaysAsNarrowAsAsked) {
    ProtectedState view(false, iconSize);
    EXPECT_LE(view.minimumSizeHint().width(), 48);
    const auto image = pictureOf(view, 60);
    EXPECT_EQ(image.pixelColor(54, 19), SystemColors::red);
    EXPECT_EQ(image.pixelColor(55, 19).alpha(), 0);
}

TEST(ProtectedStateTest, IsATextForAssistiveTechnologiesToo) {
    ProtectedState view(false, iconSize);
    const auto* const accessible = QAccessible::queryAccessibleInterface(&view);
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Unprotected"));
    EXPECT_EQ(view.focusPolicy(), Qt::NoFocus);

    view.setProtected(true);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Protected"));
}

} // namespace quorvale::ui::menu
