#include "desktop/DesktopSession.hpp"
#include "ui/menu/SystemColors.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>

namespace quorvale {

namespace {

using tests::DesktopSession;
using tests::HelperProcess;
using tests::waitUntil;

struct Desktop {
    const char* name;
    std::vector<std::string> options;
    int scale;

    friend void PrintTo(const Desktop& desktop, std::ostream* out) { *out << desktop.name; }
};

class LogWindowTest : public testing::TestWithParam<Desktop> {
protected:
    QRect waitForWindow() const {
        QRect window;
        EXPECT_TRUE(waitUntil([&] { return !(window = session.window("Log")).isEmpty(); })) << "no log window";
        return window;
    }

    [[nodiscard]] bool waitForNoWindow() const {
        return waitUntil([&] { return session.window("Log").isEmpty(); });
    }

    /// The list in a window, without its rounded edge.
    [[nodiscard]] QImage list(const QRect& window) const {
        const auto edge = 26 * GetParam().scale;
        const auto footer = 72 * GetParam().scale;
        return session.screenshot().copy(window.adjusted(edge, edge, -edge, -footer));
    }

    /// How far down the list is written on.
    [[nodiscard]] int written(const QRect& window) const {
        const auto image = list(window);
        const auto paper = image.pixel(image.width() - 1, image.height() - 1);
        for (int y = image.height() - 1; y >= 0; --y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) != paper) {
                    return y;
                }
            }
        }
        return 0;
    }

    void openFromTheIcon() const {
        session.click(session.icon(), DesktopSession::Button::right);
        // The menu takes a moment to come, and keys before that go elsewhere. Its first line has the status's symbol.
        EXPECT_TRUE(waitUntil([&] {
            const auto screen = session.screenshot();
            const std::span pixels(reinterpret_cast<const QRgb*>(screen.constBits()),
                                   static_cast<std::size_t>(screen.width()) *
                                       static_cast<std::size_t>(screen.height()));
            return std::ranges::find(pixels, ui::menu::SystemColors::red.rgb()) != pixels.end();
        }));
        for (const auto* key : {"Down", "Down", "Down", "Return"}) {
            session.press(key);
        }
    }

    DesktopSession session{GetParam().options};
    HelperProcess helper{session.environment()};
};

} // namespace

TEST_P(LogWindowTest, OpensFromTheIconScrollsClosesAndOpensAgainWithWhatCameSince) {
    ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
    openFromTheIcon();
    auto window = waitForWindow();
    EXPECT_EQ(window.size(), QSize(720, 480) * GetParam().scale);
    int before = 0;
    ASSERT_TRUE(waitUntil([&] { return (before = written(window)) > 0; }));

    const auto done = [&] {
        const auto scale = GetParam().scale;
        session.click(window.bottomRight() - QPoint(40, 30) * scale);
        return waitForNoWindow();
    };
    helper.notify(R"({"running":true,"restart":false,"terminate":false})");
    ASSERT_TRUE(helper.logs("info Received notification: true"));
    const auto action = [&] { session.openLog(); };
    // Its answer comes after what the notification set going.
    action();
    EXPECT_EQ(written(window), before) << "nothing is read again while it is open";
    EXPECT_TRUE(done());

    action();
    window = waitForWindow();
    EXPECT_TRUE(waitUntil([&] { return written(window) > before; }));
    action();
    EXPECT_EQ(session.window("Log"), window) << "still one";
    session.press("Escape");
    EXPECT_TRUE(waitForNoWindow());

    for (int line = 0; line < 60; ++line) {
        helper.notify(R"({"running":true,"restart":false,"terminate":false})");
    }
    action();
    window = waitForWindow();
    ASSERT_TRUE(waitUntil([&] { return written(window) > list(window).height() * 9 / 10; }));
    const auto top = list(window);
    session.press("End");
    EXPECT_TRUE(waitUntil([&] { return list(window) != top; }));
    session.press("Home");
    EXPECT_TRUE(waitUntil([&] { return list(window) == top; }));
    session.run({"xdotool", "mousemove", std::to_string(window.center().x()), std::to_string(window.center().y()),
                 "click", "5"});
    EXPECT_TRUE(waitUntil([&] { return list(window) != top; })) << "the wheel";
    EXPECT_TRUE(done());
    EXPECT_TRUE(helper.process().running());
}

INSTANTIATE_TEST_SUITE_P(
    Desktops, LogWindowTest,
    testing::Values(Desktop{"Light", {"--theme", "light"}, 1},
                    Desktop{"DarkAtScaleTwo", {"--theme", "dark", "--scale", "2", "--size", "2560x1600"}, 2}),
    [](const auto& instance) { return std::string(instance.param.name); });

} // namespace quorvale
