#include "platform/desktop/windows/PanelWindow.hpp"

#include "support/waitUntil.hpp"

#include <gtest/gtest.h>

namespace quorvale::platform::desktop {

TEST(PanelWindowTest, IsNotClosedByLateNewsOfALostFocus) {
    PanelWindow window(PanelWindow::Presentation::AnchoredPopup);
    window.setContent(std::make_unique<QWidget>());
    window.open({});
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(tests::waitUntil([&] { return window.close(); }));
    EXPECT_FALSE(window.isVisible());
    window.open({});
    window.dismiss();
    EXPECT_FALSE(window.isVisible());
}

} // namespace quorvale::platform::desktop
