#include "ui/menu/MenuButton.hpp"

#include "ui/common/FocusRing.hpp"
#include "ui/menu/SystemColors.hpp"

#include <QAccessible>
#include <QApplication>
#include <QEnterEvent>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace quorvale::ui::menu {

namespace {

QImage pictureOf(QWidget& view) {
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    view.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

void enter(QWidget& view) {
    QEnterEvent event({5, 5}, {5, 5}, {5, 5});
    QCoreApplication::sendEvent(&view, &event);
}

void leave(QWidget& view) {
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&view, &event);
}

QColor rightOf(QWidget& view) {
    return pictureOf(view).pixelColor(view.width() - 10, view.height() / 2);
}

} // namespace

TEST(MenuButtonTest, HighlightsOnlyTheButtonUnderThePointer) {
    MenuButton first(QStringLiteral("First"), [] {});
    MenuButton second(QStringLiteral("Second"), [] {});
    first.resize(190, first.sizeHint().height());
    second.resize(first.size());
    EXPECT_EQ(rightOf(first).alpha(), 0);
    enter(first);
    EXPECT_EQ(rightOf(first), SystemColors::blue);
    EXPECT_EQ(pictureOf(first).pixelColor(0, 0).alpha(), 0) << "the corner is not round";
    leave(first);
    enter(second);
    EXPECT_EQ(rightOf(first).alpha(), 0);
    EXPECT_EQ(rightOf(second), SystemColors::blue);
    second.show();
    second.hide();
    EXPECT_EQ(rightOf(second).alpha(), 0) << "highlighted when its window comes back";
}

TEST(MenuButtonTest, LooksPressedAsItLooksUnpressed) {
    MenuButton button(QStringLiteral("Quit"), [] {});
    button.resize(190, button.sizeHint().height());
    for (const auto hovered : {false, true}) {
        hovered ? enter(button) : leave(button);
        const auto before = pictureOf(button);
        button.setDown(true);
        EXPECT_EQ(pictureOf(button), before);
        button.setDown(false);
    }
    QTest::mousePress(&button, Qt::LeftButton);
    QTest::mouseMove(&button, {-20, 5});
    EXPECT_EQ(rightOf(button).alpha(), 0) << "the pointer was dragged away";
    QTest::mouseRelease(&button, Qt::LeftButton, {}, {-20, 5});
}

TEST(MenuButtonTest, TakesItsTextColorFromThePaletteUntilItIsHighlighted) {
    QPalette dark;
    dark.setColor(QPalette::WindowText, QColor(0xDD, 0xEE, 0xFF));
    EXPECT_EQ(MenuButtonStyle::look(false, dark).text, QColor(0xDD, 0xEE, 0xFF));
    EXPECT_EQ(MenuButtonStyle::look(false, dark).background.alpha(), 0);
    EXPECT_EQ(MenuButtonStyle::look(true, dark).text, SystemColors::white);
}

TEST(MenuButtonTest, BeginsItsTitleWhereLinesBegin) {
    MenuButton button(QStringLiteral("Quit"), [] {});
    button.resize(190, button.sizeHint().height());
    const auto isInked = [&](const QRect& place) {
        const auto part = pictureOf(button).copy(place);
        QImage empty(part.size(), part.format());
        empty.fill(Qt::transparent);
        return part != empty;
    };
    const QRect left(0, 0, 60, button.height());
    EXPECT_TRUE(isInked(left));
    EXPECT_FALSE(isInked(left.translated(130, 0)));
    button.setLayoutDirection(Qt::RightToLeft);
    EXPECT_FALSE(isInked(left));
    EXPECT_TRUE(isInked(left.translated(130, 0)));
}

TEST(MenuButtonTest, ShowsItsTitleAsItIs) {
    const auto title = QStringLiteral("A && B &Quit <b>");
    MenuButton button(title, [] {});
    const auto* const accessible = QAccessible::queryAccessibleInterface(&button);
    EXPECT_EQ(accessible->role(), QAccessible::PushButton);
    EXPECT_EQ(accessible->text(QAccessible::Name), title);
    EXPECT_TRUE(button.shortcut().isEmpty());
    EXPECT_EQ(button.sizeHint().width(), button.fontMetrics().horizontalAdvance(title) + 8);
    EXPECT_EQ(button.sizeHint().height(), button.fontMetrics().height() + 8);
}

TEST(MenuButtonTest, RunsItsActionOncePerActivation) {
    int runs = 0;
    MenuButton button(QStringLiteral("Quit"), [&] { ++runs; });
    button.resize(190, 24);
    int expected = 0;
    for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(&button, key);
        EXPECT_EQ(runs, ++expected) << key;
    }
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(runs, ++expected);
    QTest::mouseClick(&button, Qt::RightButton);
    EXPECT_EQ(runs, expected);
}

TEST(MenuButtonTest, ShowsTheFocusOfTheKeyboardAsARingAndTakesNoneFromTheMouse) {
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const first = new MenuButton(QStringLiteral("First"), [] {});
    auto* const second = new MenuButton(QStringLiteral("Second"), [] {});
    layout->addWidget(first);
    layout->addWidget(second);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    first->setFocus(Qt::TabFocusReason);
    const auto ground = window.palette().color(QPalette::Window);
    const QPoint ring(1, first->height() / 2);
    EXPECT_EQ(pictureOf(*first).pixelColor(ring), common::focusRingColor(ground, ground));
    EXPECT_EQ(rightOf(*first).alpha(), 0) << "focus is no highlight";
    enter(*second);
    QTest::mouseClick(second, Qt::LeftButton);
    EXPECT_TRUE(first->hasFocus());
    QTest::keyClick(first, Qt::Key_Tab);
    EXPECT_TRUE(second->hasFocus());
    EXPECT_EQ(pictureOf(*first).pixelColor(ring).alpha(), 0);
    EXPECT_NE(pictureOf(*second).pixelColor(ring), SystemColors::blue) << "no ring is seen on the highlight";
}

} // namespace quorvale::ui::menu
