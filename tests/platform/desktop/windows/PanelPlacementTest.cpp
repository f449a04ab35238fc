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

TEST(PanelPlacementTest, FindsTheIconFromThePointerOrFromWhatThePanelSays) {
    using enum PanelActivation;
    // The second screen lies to the right, at twice the scale. Both have a panel along the upper edge.
    const std::vector<ScreenGeometry> screens{{{0, 0, 1280, 800}, {0, 32, 1280, 768}, 1},
                                              {{1280, 0, 800, 600}, {1280, 32, 800, 568}, 2}};
    constexpr QPoint elsewhere(300, 300);
    constexpr auto most = std::numeric_limits<int>::max();
    constexpr auto least = std::numeric_limits<int>::min();

    struct Case {
        const char* name;
        QPoint word;
        PanelActivation activation;
        QPoint pointer;
        QPoint expected;
    };

    for (const auto& [name, word, activation, pointer, expected] : {
             Case{"xfce4-panel, a click", {1269, 20}, ByPointer, {1269, 20}, {1269, 20}},
             Case{"xfce4-panel at scale 2, a click", {1913, 9}, ByPointer, {1913, 9}, {1913, 9}},
             Case{"MATE, which counts from the item's own corner", {0, 25}, ByPointer, {1130, 16}, {1130, 16}},
             Case{"MATE, a panel of another toolkit's", {0, 25}, Unknown, {1130, 16}, {1130, 16}},
             Case{"Enter on a panel", {900, 12}, ByKeyboard, elsewhere, {900, 12}},
             Case{"Enter on a panel, the pointer on it", {900, 12}, ByKeyboard, {100, 12}, {900, 12}},
             Case{"assistive technology", {900, 12}, Unknown, elsewhere, {900, 12}},
             Case{"native pixels of a scaled screen", {2400, 24}, Unknown, elsewhere, {1840, 12}},
             Case{"a panel's own pixels, beside its pointer", {1240, 300}, Unknown, {1880, 300}, {1880, 300}},
             Case{"nothing", {0, 0}, ByKeyboard, elsewhere, elsewhere},
             Case{"a place off the screens", {-40, 9000}, ByKeyboard, elsewhere, elsewhere},
             Case{"nonsense", {most, least}, ByKeyboard, elsewhere, elsewhere},
         }) {
        EXPECT_EQ(anchorPoint(word, activation, pointer, screens), expected) << name;
    }
    EXPECT_EQ(anchorPoint({5, 5}, Unknown, elsewhere, {}), elsewhere);
}

TEST(PanelPlacementTest, StandsAtTheEdgeThatIsNextToTheIcon) {
    constexpr QRect screen(0, 0, 1280, 800);
    constexpr QSize size(202, 105);
    const auto expect = [&](QPoint word, Qt::Edges edges, QMargins margins) {
        const auto place = layerPlace(word, size, screen, Qt::LeftToRight);
        EXPECT_EQ(place.edges, edges) << word.x() << ' ' << word.y();
        EXPECT_EQ(place.margins, margins) << word.x() << ' ' << word.y();
    };
    expect({600, 10}, Qt::TopEdge | Qt::LeftEdge, {499, 4, 0, 0});
    expect({1275, 790}, Qt::BottomEdge | Qt::LeftEdge, {1074, 0, 0, 4});
    expect({10, 400}, Qt::LeftEdge | Qt::TopEdge, {4, 348, 0, 0});
    expect({1270, 400}, Qt::RightEdge | Qt::TopEdge, {0, 348, 4, 0});
    constexpr auto least = std::numeric_limits<int>::min();
    for (const QPoint useless : {QPoint(0, 0), QPoint(600, 400), QPoint(-40, 9000), QPoint(least, least)}) {
        expect(useless, Qt::TopEdge | Qt::RightEdge, {0, 4, 4, 0});
        EXPECT_EQ(layerPlace(useless, size, screen, Qt::RightToLeft).edges, Qt::TopEdge | Qt::LeftEdge);
    }
}

TEST(PanelPlacementTest, TakesTheEndOfThePanelsLineForTheIconsPlace) {
    constexpr QRect screen(0, 0, 1280, 800);
    const ScreenGeometry panelAbove{screen, {0, 28, 1280, 772}};
    EXPECT_EQ(iconCorner(panelAbove, Qt::LeftToRight), QPoint(1279, 0));
    EXPECT_EQ(iconCorner(panelAbove, Qt::RightToLeft), QPoint(0, 0));
    EXPECT_EQ(iconCorner({screen, {0, 0, 1280, 756}}, Qt::LeftToRight), QPoint(1279, 799));
    EXPECT_EQ(iconCorner({screen, screen}, Qt::LeftToRight), QPoint(1279, 0));
}

} // namespace quorvale::platform::desktop
