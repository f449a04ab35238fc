#include "ui/menu/WindowBarStyle.hpp"

#include "support/waitUntil.hpp"
#include "ui/menu/MenuButton.hpp"
#include "ui/menu/ProtectedState.hpp"

#include <QTest>
#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quorvale::ui::menu {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowBarStyleTest : public testing::Test {
protected:
    WindowBarStyleTest() {
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    MenuButton* button(const char* title) {
        for (auto* candidate : view.findChildren<MenuButton*>()) {
            if (candidate->accessibleName() == QLatin1String(title)) {
                return candidate;
            }
        }
        return nullptr;
    }

    std::vector<std::string> calls;
    platform::queue::MainQueue mainQueue;
    std::shared_ptr<status::StatusManager> statusManager = std::make_shared<status::StatusManager>(mainQueue);
    WindowBarStyle view{*statusManager,
                        mainQueue,
                        18,
                        {.dismiss = [this] { calls.emplace_back("dismiss"); },
                         .openMainApplication = [this] { calls.emplace_back("open"); },
                         .quitApplication = [this] { calls.emplace_back("quit"); }}};
    ProtectedState* indicator = view.findChild<ProtectedState*>();
};

TEST_F(WindowBarStyleTest, StacksTheIndicatorAndTwoButtonsWithALineBetweenInAColumnOf200) {
    EXPECT_EQ(view.width(), 200);
    EXPECT_EQ(view.maximumWidth(), 200);
    const auto* const settings = button("Settings...");
    const auto* const quit = button("Quit");
    ASSERT_TRUE(indicator && settings && quit);
    EXPECT_EQ(indicator->geometry(), QRect(0, 0, 200, indicator->sizeHint().height()));
    EXPECT_EQ(settings->geometry(),
              QRect(5, indicator->geometry().bottom() + 1 + 5, 190, settings->sizeHint().height()));
    EXPECT_EQ(quit->geometry().top() - settings->geometry().bottom() - 1, 5 + 1 + 5);
    EXPECT_EQ(quit->geometry().left(), 5);
    EXPECT_EQ(quit->width(), 190);
    EXPECT_EQ(view.height() - quit->geometry().bottom() - 1, 5);
    const auto picture = view.grab().toImage();
    const auto line = settings->geometry().bottom() + 1 + 5;
    EXPECT_NE(picture.pixelColor(5, line), picture.pixelColor(4, line));
    EXPECT_EQ(picture.pixelColor(5, line), picture.pixelColor(194, line));
    EXPECT_EQ(picture.pixelColor(5, line - 1), picture.pixelColor(5, line + 1));
}

TEST_F(WindowBarStyleTest, ShowsTheStatusAndFollowsItWhileItIsShown) {
    EXPECT_EQ(indicator->text(), QStringLiteral("Unprotected"));
    for (const auto value : {false, true, false, true}) {
        statusManager->setStatus(value);
    }
    EXPECT_TRUE(tests::waitUntil([&] { return indicator->text() == QLatin1String("Protected"); }));
    EXPECT_EQ(view.width(), 200);

    auto late = std::make_unique<WindowBarStyle>(*statusManager, mainQueue, 18, WindowBarStyle::Actions{});
    EXPECT_EQ(late->findChild<ProtectedState*>()->text(), QStringLiteral("Protected"));
    // A view may go while its update is on the way.
    statusManager->setStatus(false);
    mainQueue.async([&] { late.reset(); });
    EXPECT_TRUE(tests::waitUntil([&] { return indicator->text() == QLatin1String("Unprotected"); }));
}

TEST_F(WindowBarStyleTest, DismissesTheWindowBeforeItOpensTheMainApplication) {
    QTest::mouseClick(view.windowHandle(), Qt::LeftButton, {}, indicator->geometry().center());
    EXPECT_THAT(calls, IsEmpty()) << "the indicator is no button";
    QTest::mouseClick(button("Settings..."), Qt::LeftButton);
    EXPECT_THAT(calls, ElementsAre("dismiss", "open"));
}

TEST_F(WindowBarStyleTest, QuitsByClickAndByShortcutWithoutDismissing) {
    QTest::mouseClick(button("Quit"), Qt::LeftButton);
    EXPECT_THAT(calls, ElementsAre("quit"));
    for (auto* focused : {button("Settings..."), button("Quit")}) {
        calls.clear();
        focused->setFocus();
        QTest::keyClick(view.windowHandle(), Qt::Key_Q, Qt::ControlModifier);
        EXPECT_TRUE(tests::waitUntil([&] { return !calls.empty(); }));
        EXPECT_THAT(calls, ElementsAre("quit"));
    }
    for (const auto modifiers : {Qt::KeyboardModifiers(Qt::NoModifier), Qt::ControlModifier | Qt::ShiftModifier}) {
        calls.clear();
        QTest::keyClick(view.windowHandle(), Qt::Key_Q, modifiers);
        EXPECT_FALSE(button("Quit")->isDown());
    }
}

} // namespace quorvale::ui::menu
