#include "desktop/DesktopSession.hpp"
#include "support/AgentProcess.hpp"
#include "ui/menu/SystemColors.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace quorvale {

namespace {

namespace SystemColors = ui::menu::SystemColors;
using tests::DesktopSession;
using tests::HelperProcess;
using tests::Process;
using tests::waitUntil;

constexpr auto launched = "info Quorvale Helper launched";
constexpr auto protectedNow = R"({"running":true,"restart":false,"terminate":false})";

/// Where the indicator's box is in the window of a desktop of scale 1, and how far it reaches.
constexpr int boxWidth = 190;
constexpr int boxHeight = 28;

/// Where the screen shows the icon's shield along its upper edge: the bounds of the blue pixels, or nothing.
QRect shieldIn(const QImage& screen) {
    QRect bounds;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < screen.width(); ++x) {
            const QColor color(screen.pixel(x, y));
            if (color.blue() > color.red() + 80) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return bounds.width() >= 12 && bounds.height() >= 12 ? bounds : QRect();
}

bool showsIcon(const DesktopSession& session) {
    const auto place = session.icon();
    return waitUntil([&] { return shieldIn(session.screenshot()).contains(place); });
}

QPoint bareDesktop() {
    return {200, 500};
}

} // namespace

TEST(PanelTest, ShowsTheIconWheneverAPanelStarts) {
    const DesktopSession session({"--no-panel"});
    HelperProcess helper(session.environment());
    ASSERT_TRUE(helper.logs(launched));
    session.control("start-panel");
    EXPECT_TRUE(showsIcon(session)) << "helper first";
    session.control("stop-panel");
    session.control("start-panel");
    EXPECT_TRUE(showsIcon(session)) << "panel restarted";

    helper.process().kill();
    HelperProcess second(session.environment());
    ASSERT_TRUE(second.logs(launched));
    EXPECT_TRUE(showsIcon(session)) << "panel first";
}

TEST(PanelTest, ShowsEachStatusInTheOpenWindow) {
    const DesktopSession session;
    const HelperProcess::Environment& environment = session.environment();
    Process agent({.program = QUORVALE_AGENT_SIMULATOR,
                   .arguments = {"--state", R"({"active":true})"},
                   .environment = environment});
    ASSERT_TRUE(agent.waitForLine("ready"));
    HelperProcess const helper(environment);
    const auto icon = session.icon();
    session.click(icon);
    const auto red = session.waitForArea(SystemColors::red);
    EXPECT_EQ(red.size(), QSize(boxWidth, boxHeight));
    EXPECT_LT(red.top(), 64) << "the window is at the icon";
    EXPECT_GT(red.right(), 1240);

    // The buttons are under the box of the indicator: "Settings..." and, below a divider, "Quit".
    for (const QPoint button : {QPoint(red.center().x(), red.bottom() + 24), {red.center().x(), red.bottom() + 57}}) {
        session.run({"xdotool", "mousemove", std::to_string(button.x()), std::to_string(button.y())});
        ASSERT_TRUE(waitUntil([&] { return session.waitForArea(SystemColors::blue).contains(button); }));
    }
    helper.notify(R"({"running":false,"restart":true,"terminate":false})");
    EXPECT_EQ(session.waitForArea(SystemColors::green), red) << "the same window, still open";
    agent.send("updateProtectionStatus false");
    EXPECT_EQ(session.waitForArea(SystemColors::red), red);

    const auto service = session.item();
    const auto toolTip = [&] {
        return session.run({"gdbus", "call", "--session", "--dest", service, "--object-path", "/StatusNotifierItem",
                            "--method", "org.freedesktop.DBus.Properties.Get", "org.kde.StatusNotifierItem",
                            "ToolTip"});
    };
    EXPECT_THAT(toolTip(), testing::HasSubstr("Quorvale Helper: Unprotected"));
    helper.notify(protectedNow);
    session.waitForArea(SystemColors::green);
    EXPECT_THAT(toolTip(), testing::HasSubstr("Quorvale Helper: Protected"));
}

TEST(PanelTest, DismissesTheWindowAndTheMenuAsMenusAreDismissed) {
    const DesktopSession session;
    HelperProcess const helper(session.environment());
    const auto icon = session.icon();
    const auto windows = [&] {
        return session.run({"sh", "-c", "xdotool search --onlyvisible --maxdepth 1 --class QuorvaleHelper || true"});
    };
    const auto shows = [&](bool anything) { return waitUntil([&] { return windows().empty() != anything; }); };
    using Step = std::pair<const char*, std::function<void()>>;
    const auto held = [&](const char* method) {
        return [&, method] {
            // As panels do that act when the button goes down, and hold the pointer until it goes up. One of them
            // counts from a corner of its own.
            session.run({"xdotool", "mousemove", std::to_string(icon.x()), std::to_string(icon.y()), "mousedown", "9"});
            session.activate(method, {0, 25});
            EXPECT_TRUE(shows(true));
            session.run({"xdotool", "mouseup", "9"});
        };
    };
    const auto both = [&](const char* first, const char* second) {
        return [&, first, second] {
            session.activate(first, icon);
            EXPECT_TRUE(shows(true));
            session.activate(second, icon);
        };
    };
    const std::vector<Step> openings{
        {"a click", [&] { session.click(icon); }},
        {"a button that is held", held("Activate")},
        {"the menu", [&] { session.activate("ContextMenu", icon); }},
        {"the menu, a button that is held", held("ContextMenu")},
        {"the menu while the window is open", both("Activate", "ContextMenu")},
        {"the window while the menu is open", both("ContextMenu", "Activate")},
    };
    const std::vector<Step> dismissals{
        {"a click on the icon", [&] { session.click(icon); }},
        {"a click elsewhere", [&] { session.click(bareDesktop()); }},
        {"Escape", [&] { session.press("Escape"); }},
    };
    for (const auto& [opening, open] : openings) {
        for (const auto& [dismissal, dismiss] : dismissals) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, std::string(opening) + ", " + dismissal);
            open();
            ASSERT_TRUE(shows(true));
            const auto window = session.window("Quorvale Helper");
            EXPECT_TRUE(window.isEmpty() || (window.top() < 64 && window.right() > 1240)) << "it is at the icon";
            dismiss();
            EXPECT_TRUE(shows(false));
            // An answer of the helper proves that nothing is still on its way to it.
            session.run(
                {"gdbus", "introspect", "--session", "--dest", "com.quorvale.QuorvaleHelper", "--object-path", "/"});
            EXPECT_TRUE(shows(false)) << "it is not opened again";
        }
    }
}

TEST(PanelTest, OpensTheMainApplicationFromTheKeyboardAndQuits) {
    const DesktopSession session;
    auto environment = session.environment();
    const auto record = std::filesystem::path(environment.at("QUORVALE_SESSION").value_or("")) / "opened";
    environment["QUORVALE_OPENED"] = record.string();
    HelperProcess helper(environment);
    const auto icon = session.icon();
    session.click(icon);
    session.waitForArea(SystemColors::red);
    session.press("Tab");
    session.press("space");
    EXPECT_TRUE(session.waitForNothingOf(SystemColors::red));
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(record); })) << "the main application was not started";

    session.click(icon);
    session.waitForArea(SystemColors::red);
    session.press("ctrl+q");
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
    EXPECT_EQ(helper.log().back(), "info Quorvale Helper terminated");
    EXPECT_EQ(helper.log().size(), 4U);
}

TEST(PanelTest, DrawsTwiceAsManyPixelsAtScaleTwo) {
    const DesktopSession session({"--scale", "2", "--theme", "dark"});
    HelperProcess const helper(session.environment());
    session.click(session.icon());
    EXPECT_EQ(session.waitForArea(SystemColors::red).size(), QSize(2 * boxWidth, 2 * boxHeight));
}

TEST(PanelTest, FallsBackToTheTrayOfX11) {
    const DesktopSession session({"--no-panel"});
    const Process tray({.program = "trayer",
                        .arguments = {"--edge", "top", "--align", "right", "--widthtype", "request", "--height", "32"},
                        .environment = session.environment()});
    HelperProcess const helper(session.environment());
    QRect icon;
    ASSERT_TRUE(waitUntil([&] { return !(icon = shieldIn(session.screenshot())).isEmpty(); }));
    session.click(icon.center());
    EXPECT_EQ(session.waitForArea(SystemColors::red).size(), QSize(boxWidth, boxHeight));
}

} // namespace quorvale
