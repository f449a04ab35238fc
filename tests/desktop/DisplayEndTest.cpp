#include "support/HelperProcess.hpp"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <cstdlib>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace quorvale {

namespace {

using tests::HelperProcess;
using tests::PrivateBus;
using tests::Process;

/// A display server without a screen, and a helper on it.
class DisplayEndTest : public testing::Test {
protected:
    void expectOrderlyEnd(Process& server, const HelperProcess::Environment& display) {
        HelperProcess helper(environment(display));
        ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
        server.kill();
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
        EXPECT_THAT(helper.log(),
                    testing::ElementsAre("info Quorvale Helper Started...", testing::_, "info Quorvale Helper launched",
                                         "info Quorvale Helper terminated"));
    }

    [[nodiscard]] HelperProcess::Environment environment(HelperProcess::Environment display) const {
        display["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus_.address();
        display["DBUS_SESSION_BUS_ADDRESS"] = sessionBus_.address();
        // The user's rules must not keep the end from being seen.
        display["QT_LOGGING_RULES"] = "*=false";
        return display;
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

TEST_F(DisplayEndTest, EndsWithTheCompositorThatEndsWhileItStarts) {
    const QTemporaryDir runtime;
    const auto path = runtime.filePath(QStringLiteral("wayland")).toStdString();
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    ASSERT_LT(path.copy(address.sun_path, sizeof address.sun_path), sizeof address.sun_path);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener, 1), 0);
    std::thread compositor([listener] { ::close(::accept(listener, nullptr, nullptr)); });
    HelperProcess helper(environment({{"XDG_RUNTIME_DIR", runtime.path().toStdString()},
                                      {"QT_QPA_PLATFORM", "wayland"},
                                      {"WAYLAND_DISPLAY", "wayland"}}));
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
    EXPECT_THAT(helper.process().lines(), testing::Contains(testing::HasSubstr("connection broke")));
    ::shutdown(listener, SHUT_RDWR);
    compositor.join();
    ::close(listener);
}

TEST_F(DisplayEndTest, SaysThatThereIsNoDisplay) {
    HelperProcess helper(environment({{"QT_QPA_PLATFORM", "wayland"}, {"WAYLAND_DISPLAY", "absent"}}));
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_FAILURE}));
    EXPECT_THAT(helper.process().lines(), testing::Contains(testing::HasSubstr("failed to start")));
    EXPECT_THAT(helper.log(), testing::IsEmpty());
}

} // namespace quorvale
