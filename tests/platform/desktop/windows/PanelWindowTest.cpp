#include "platform/desktop/windows/PanelWindow.hpp"

#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace quorvale::platform::desktop {

TEST(PanelWindowTest, ReachesItsButtonsWithArrowsAndKnowsEscapeFromALossOfTheFocus) {
    PanelWindow window(PanelWindow::Presentation::PlacedByCompositor);
    auto content = std::make_unique<QWidget>();
    auto* const column = new QVBoxLayout(content.get());
    auto* const first = new QPushButton;
    auto* const last = new QPushButton;
    column->addWidget(first);
    column->addWidget(last);
    window.setContent(std::move(content));
    window.open({});
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.setFocus();
    QTest::keyClick(&window, Qt::Key_Down);
    EXPECT_TRUE(first->hasFocus());
    window.setFocus();
    QTest::keyClick(&window, Qt::Key_Up);
    EXPECT_TRUE(last->hasFocus());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(window.wasJustDismissedByFocusLoss()) << "the next click opens it";

    PanelWindow another(PanelWindow::Presentation::PlacedByCompositor);
    another.setContent(std::make_unique<QWidget>());
    another.open({});
    ASSERT_TRUE(QTest::qWaitForWindowActive(&another));
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !another.isVisible(); }));
    EXPECT_TRUE(another.wasJustDismissedByFocusLoss());
}

} // namespace quorvale::platform::desktop
