#include "support/HelperProcess.hpp"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <cstdlib>

namespace quorvale {

namespace {

using tests::HelperProcess;
using tests::PrivateBus;
using tests::Process;

/// A display server without a screen, and a helper on it.
class DisplayEndTest : public testing::Test {
protected:
    void expectOrderlyEnd(Process& server, const HelperProcess::Environment& display) {
        auto environment = display;
        environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus_.address();
        environment["DBUS_SESSION_BUS_ADDRESS"] = sessionBus_.address();
        // The user's rules must not keep the end from being seen.
        environment["QT_LOGGING_RULES"] = "*=false";
        HelperProcess helper(environment);
        ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
        server.kill();
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
        EXPECT_THAT(helper.log(),
                    testing::ElementsAre("info Quorvale Helper Started...", testing::_, "info Quorvale Helper launched",
                                         "info Quorvale Helper terminated"));

        HelperProcess without(environment);
        EXPECT_EQ(without.process().waitForExit(), (Process::Exit{.code = EXIT_FAILURE}));
        EXPECT_THAT(without.process().lines(), testing::Contains(testing::HasSubstr("failed to start")));
        EXPECT_THAT(without.log(), testing::IsEmpty());
    }

    PrivateBus systemBus_;
    PrivateBus sessionBus_;
};

} // namespace

TEST_F(DisplayEndTest, EndsWithTheXServer) {
    Process server({.program = "Xvfb", .arguments = {"-displayfd", "1", "-nolisten", "tcp"}});
    const auto number = server.waitForLine([](std::string_view line) { return !line.empty(); });
    ASSERT_TRUE(number);
    expectOrderlyEnd(server, {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", ":" + number.value_or("")}});
}

TEST_F(DisplayEndTest, EndsWithTheWaylandCompositor) {
    const QTemporaryDir runtime;
    const auto socket = runtime.filePath(QStringLiteral("wayland"));
    HelperProcess::Environment display{{"XDG_RUNTIME_DIR", runtime.path().toStdString()}};
    Process server({.program = "weston",
                    .arguments = {"--backend=headless-backend.so", "--socket=wayland", "--no-config"},
                    .environment = display,
                    .errorOutput = Process::ErrorOutput::Merged});
    ASSERT_TRUE(tests::waitUntil([&] { return QFile::exists(socket); }));
    display["QT_QPA_PLATFORM"] = "wayland";
    display["WAYLAND_DISPLAY"] = "wayland";
    expectOrderlyEnd(server, display);
}

} // namespace quorvale
