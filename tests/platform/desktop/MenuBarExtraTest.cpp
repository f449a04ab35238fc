#include "platform/desktop/MenuBarExtra.hpp"

#include "FakeWatcher.hpp"
#include "SessionBus.hpp"

#include <QApplication>
#include <QKeyEvent>

namespace quorvale::platform::desktop {

class MenuBarExtraTest : public testing::Test {
protected:
    MenuBarExtraTest() {
        auto content = std::make_unique<QWidget>();
        content->setFixedSize(200, 100);
        content_ = content.get();
        extra.setContent(std::move(content));
    }

    void activate() {
        auto message =
            QDBusMessage::createMethodCall(session.program.baseService(), QStringLiteral("/StatusNotifierItem"),
                                           QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Activate"));
        message << 700 << 10;
        EXPECT_EQ(session.ask(message).type(), QDBusMessage::ReplyMessage);
    }

    SessionBus session;
    FakeWatcher watcher{session.other};
    MenuBarExtra extra{session.program, {QStringLiteral("id"), QStringLiteral("Quorvale Helper"), {}}};
    QWidget* content_ = nullptr;
};

TEST_F(MenuBarExtraTest, OpensAndDismissesItsWindowByTheIcon) {
    ASSERT_TRUE(tests::waitUntil([&] { return !watcher.items.isEmpty(); }));
    EXPECT_FALSE(extra.isShown());
    activate();
    EXPECT_TRUE(extra.isShown());
    EXPECT_TRUE(content_->isVisible());
    activate();
    EXPECT_FALSE(extra.isShown());
}

TEST_F(MenuBarExtraTest, DismissesItsWindowByEscape) {
    extra.show();
    ASSERT_TRUE(extra.isShown());
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(content_->window(), &escape);
    EXPECT_FALSE(extra.isShown());
    // No window is left, and the program still runs.
    QCoreApplication::processEvents();
    extra.show();
    EXPECT_TRUE(extra.isShown());
}

TEST_F(MenuBarExtraTest, FitsItsWindowToTheContent) {
    extra.toggle({700, 10});
    const auto* const window = content_->window();
    EXPECT_EQ(window->size(), QSize(202, 102));
    EXPECT_TRUE(window->screen()->geometry().contains(window->geometry()));
    content_->setFixedSize(150, 300);
    EXPECT_TRUE(tests::waitUntil([&] { return window->size() == QSize(152, 302); }));
}

} // namespace quorvale::platform::desktop
