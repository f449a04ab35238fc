#include "desktop/DesktopSession.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace quorvale {

namespace {

using tests::DesktopSession;
using tests::HelperProcess;
using tests::Process;

/// What a screen reader gets to know of a helper on X11, and does.
class AccessibilityTest : public testing::Test {
protected:
    AccessibilityTest() {
        EXPECT_TRUE(reader.waitForLine("ready"));
        EXPECT_TRUE(helper.logs("info Quorvale Helper launched"));
        // The toolkit misses those who begin to listen while it begins to speak.
        const auto speaks = testing::Contains("has application 'com.quorvale.QuorvaleHelper'");
        EXPECT_TRUE(tests::waitUntil([&] { return testing::Value(tree(), speaks); }));
        reader.send("listen");
        EXPECT_TRUE(reader.waitForLine("end of listen"));
    }

    HelperProcess::Environment environment() {
        auto environment = session.environment();
        const auto folder = std::filesystem::path(environment.at("QUORVALE_SESSION").value_or(""));
        std::filesystem::copy_file("/usr/share/dbus-1/services/org.a11y.Bus.service",
                                   folder / "services" / "org.a11y.Bus.service");
        session.run({"gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/", "--method",
                     "org.freedesktop.DBus.ReloadConfig"});
        environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
        opened = folder / "opened";
        environment["QUORVALE_OPENED"] = opened.string();
        return environment;
    }

    std::vector<std::string> tree() {
        const auto before = reader.lines().size();
        reader.send("tree");
        EXPECT_TRUE(reader.waitForLine("end of tree"));
        return {reader.lines().begin() + static_cast<std::ptrdiff_t>(before), reader.lines().end()};
    }

    void press(const std::string& object) {
        reader.send("press " + object);
        EXPECT_TRUE(reader.waitForLine("pressed")) << object;
    }

    const DesktopSession session;
    std::filesystem::path opened;
    const HelperProcess::Environment environment_ = environment();
    Process reader{{.program = QUORVALE_ACCESSIBILITY_CLIENT, .environment = environment_}};
    HelperProcess helper{environment_};
};

} // namespace

TEST_F(AccessibilityTest, ReadsTheOpenWindowHearsEachStatusAndPressesItsButtons) {
    using testing::Contains;
    const auto icon = session.icon();
    const auto open = [&] {
        session.click(icon);
        EXPECT_TRUE(reader.waitForLine("window:activate 0 frame 'Quorvale Helper'"));
    };
    open();
    EXPECT_TRUE(reader.waitForLine("object:state-changed:focused 1 label 'Unprotected'"));
    const auto objects = tree();
    EXPECT_THAT(objects, Contains("has frame 'Quorvale Helper' active"));
    EXPECT_THAT(objects, Contains("has label 'Unprotected' focused"));
    EXPECT_THAT(objects, Contains("has push button 'Settings...'"));
    EXPECT_THAT(objects, Contains("has push button 'Quit'"));
    helper.notify(R"({"running":true,"restart":false,"terminate":false})");
    EXPECT_TRUE(reader.waitForLine("object:property-change:accessible-name 0 label 'Protected'"));

    session.press("Down");
    EXPECT_TRUE(reader.waitForLine("object:state-changed:focused 1 push button 'Settings...'"));
    session.press("Down");
    EXPECT_TRUE(reader.waitForLine("object:state-changed:focused 1 push button 'Quit'"));
    press("push button 'Settings...'");
    EXPECT_TRUE(tests::waitUntil([&] { return std::filesystem::exists(opened); }));

    open();
    EXPECT_TRUE(reader.waitForLine("object:state-changed:focused 1 label 'Protected'")) << "where it begins";
    for (int times = 0; times < 2; ++times) {
        session.activate("Activate", icon);
    }
    EXPECT_TRUE(reader.waitForLine("object:state-changed:focused 1 label 'Protected'")) << "closed and opened at once";
    press("push button 'Quit'");
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
}

TEST_F(AccessibilityTest, ReadsTheLogAndClosesIt) {
    for (int line = 0; line < 40; ++line) {
        helper.notify(R"({"running":true,"restart":false,"terminate":false})");
    }
    session.openLog();
    EXPECT_TRUE(reader.waitForLine("window:activate 0 frame 'Log'"));
    EXPECT_TRUE(reader.waitForLine("object:state-changed:focused 1 list item '"));
    // The list's one row has the lines that are in view, of which this is the last.
    const auto lastLine = testing::EndsWith("Received notification: true' focused");
    EXPECT_TRUE(tests::waitUntil([&] { return testing::Value(tree(), testing::Contains(lastLine)); }));
    const auto objects = tree();
    EXPECT_THAT(objects, testing::Contains(testing::EndsWith(" focused")).Times(1)) << "not the list as well";
    EXPECT_THAT(objects, testing::Contains("has list 'Log'"));
    EXPECT_THAT(objects, testing::Contains(testing::StartsWith("has list item '[")));
    EXPECT_THAT(objects, testing::Contains("has scroll bar ''"));
    session.press("End");
    EXPECT_TRUE(reader.waitForLine("object:property-change:accessible-value 0 scroll bar ''"));
    press("push button 'Done'");
    const auto theWindow = testing::Contains(testing::StartsWith("has frame 'Log'"));
    EXPECT_TRUE(tests::waitUntil([&] { return testing::Value(tree(), testing::Not(theWindow)); }));
}

} // namespace quorvale
