#include "platform/desktop/windows/WindowScene.hpp"

#include "support/waitUntil.hpp"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

namespace quorvale::platform::desktop {

namespace {

class WindowSceneTest : public testing::Test {
protected:
    /// The window that is there for the user; null if none is.
    static QWidget* window() {
        for (auto* const widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible()) {
                return widget;
            }
        }
        return nullptr;
    }

    static void runDeletions() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    int contents = 0;
    WindowScene scene{{.title = QStringLiteral("Log"), .initialSize = QSize(300, 200), .makeContent = [this] {
                           ++contents;
                           auto* const content = new QWidget;
                           content->setMinimumSize(250, 150);
                           return content;
                       }}};
};

} // namespace

TEST_F(WindowSceneTest, IsOneWindowThatFollowsItsContentsLimitsAndRemembersItsSize) {
    EXPECT_EQ(window(), nullptr);
    scene.open();
    scene.open();
    EXPECT_EQ(contents, 1);
    ASSERT_NE(window(), nullptr);
    const auto* const accessible = QAccessible::queryAccessibleInterface(window());
    EXPECT_EQ(accessible->role(), QAccessible::Window);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Log"));
    EXPECT_EQ(window()->size(), QSize(300, 200));
    window()->resize(10, 10);
    EXPECT_EQ(window()->size(), QSize(250, 150));
    window()->resize(400, 300);
    scene.dismiss();
    EXPECT_EQ(window(), nullptr);
    runDeletions();

    scene.open();
    EXPECT_EQ(window()->size(), QSize(400, 300));
    window()->showMaximized();
    scene.dismiss();
    scene.open();
    EXPECT_EQ(window()->size(), QSize(400, 300));
    window()->showMinimized();
    scene.open();
    EXPECT_FALSE(window()->isMinimized());
}

TEST_F(WindowSceneTest, StaysOpenWhenItIsOpenedInTheTurnInWhichItClosed) {
    for (const auto key : {Qt::Key_Escape, Qt::Key_W}) {
        scene.open();
        ASSERT_TRUE(tests::waitUntil([] { return window()->isActiveWindow(); }));
        QTest::keyClick(window(), key, key == Qt::Key_W ? Qt::ControlModifier : Qt::NoModifier);
        EXPECT_EQ(window(), nullptr);
        scene.open();
        runDeletions();
        EXPECT_NE(window(), nullptr);
    }
}

} // namespace quorvale::platform::desktop
