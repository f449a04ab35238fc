#include "platform/desktop/windows/PanelPlacement.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace quorvale::platform::desktop {

TEST(PanelPlacementTest, OpensBesideThePanelAndInsideOfTheScreen) {
    const QRect screen(0, 0, 1280, 800);

    struct Case {
        const char* name;
        QPoint anchor;
        QRect available;
        QPoint expected;
    };

    for (const auto& [name, anchor, available, expected] : {
             Case{"below a top panel", {600, 10}, {0, 28, 1280, 772}, {499, 32}},
             Case{"in the right corner", {1275, 10}, {0, 28, 1280, 772}, {1074, 32}},
             Case{"in the left corner", {3, 10}, {0, 28, 1280, 772}, {4, 32}},
             Case{"above a bottom panel", {600, 790}, {0, 0, 1280, 772}, {499, 665}},
             Case{"right of a left panel", {10, 400}, {40, 0, 1240, 800}, {44, 349}},
             Case{"left of a right panel", {1270, 795}, {0, 0, 1240, 800}, {1034, 693}},
             Case{"below a panel that reserves nothing", {600, 10}, screen, {499, 26}},
             Case{"above a panel that reserves nothing", {600, 790}, screen, {499, 671}},
             Case{"on a screen that is too small", {50, 0}, {0, 20, 100, 60}, {4, 24}},
         }) {
        EXPECT_EQ(panelTopLeft(anchor, {202, 103}, {screen, available, 1}), expected) << name;
    }
}

TEST(PanelPlacementTest, FindsTheIconFromWhatThePanelSays) {
    // The second screen lies to the right, at twice the scale.
    const std::vector<ScreenGeometry> screens{{{0, 0, 1000, 800}, {0, 0, 1000, 800}, 1},
                                              {{1000, 0, 800, 600}, {1000, 0, 800, 600}, 2}};
    constexpr QPoint elsewhere(300, 300);

    struct Case {
        const char* name;
        QPoint word;
        QPoint pointer;
        QPoint expected;
    };

    for (const auto& [name, word, pointer, expected] : {
             Case{"native pixels", {900, 12}, elsewhere, {900, 12}},
             Case{"native pixels of a scaled screen", {2400, 24}, elsewhere, {1700, 12}},
             Case{"nothing", {0, 0}, elsewhere, elsewhere},
             Case{"a place off the screens", {-40, 9000}, elsewhere, elsewhere},
             Case{"nonsense", {std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}, elsewhere, elsewhere},
             Case{"pixels of its own scale", {1200, 12}, {1700, 12}, {1700, 12}},
         }) {
        EXPECT_EQ(anchorPoint(word, pointer, screens), expected) << name;
    }
    EXPECT_EQ(anchorPoint({5, 5}, elsewhere, {}), elsewhere);
}

} // namespace quorvale::platform::desktop
