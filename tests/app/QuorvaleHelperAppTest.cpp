#include "support/AgentProcess.hpp"
#include "support/BusPeer.hpp"
#include "support/HelperProcess.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvale::app {

namespace {

using testing::_;
using testing::ElementsAre;
using testing::StartsWith;
using tests::HelperProcess;
using tests::Process;

constexpr auto launched = "info Quorvale Helper launched";
constexpr auto terminated = "info Quorvale Helper terminated";

/// The helper as it is installed, on buses of its own.
class QuorvaleHelperAppTest : public testing::Test {
protected:
    /// Waits for its end, with which its log is `lines`.
    static void expectEnd(HelperProcess& helper, const testing::Matcher<std::vector<std::string>>& lines,
                          int status = EXIT_SUCCESS) {
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = status}));
        EXPECT_THAT(helper.log(), lines);
    }

    tests::PrivateBus systemBus_;
    tests::PrivateBus sessionBus_;
};

} // namespace

TEST_F(QuorvaleHelperAppTest, StartsWithoutConnectingAndEndsInOrder) {
    const tests::AgentProcess agent(systemBus_);
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs(launched));
    helper.process().terminate();
    expectEnd(helper, ElementsAre("info Quorvale Helper Started...", "info Version: 1.0.0 (1)", launched, terminated));
    EXPECT_THAT(agent.events(), ElementsAre(StartsWith("ready")));
}

TEST_F(QuorvaleHelperAppTest, ConnectsWhenTheUpdaterSaysSoAndStartsToReconnectBeforeItQuits) {
    tests::AgentProcess const agent(systemBus_, {"--state", R"({"active":true})"});
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs(launched));
    helper.notify(R"({"running":false,"restart":true,"terminate":false})");
    ASSERT_TRUE(helper.logs("info Initial State Changed: true"));
    helper.notify(R"({"running":true,"restart":true,"terminate":true})");
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));

    auto lines = helper.log();
    // The old connection's end is reported on its own queue, whenever that comes to it.
    std::erase(lines, "info Helper XPC: Connection invalidated");
    EXPECT_THAT(
        std::vector(lines.begin() + 3, lines.end()),
        ElementsAre("info Helper XPC: Attempting to connect to agent", "info Helper XPC: resuming XPC connection",
                    "info Helper XPC: Connection resumed", "info Received notification: false",
                    "info Initial State Changed: true", "info Helper XPC: Attempting to connect to agent",
                    "info Helper XPC: Invalidating existing connection", "info Helper XPC: resuming XPC connection",
                    "info Helper XPC: Connection resumed", "info Updater: Terminating Helper", terminated));
}

TEST_F(QuorvaleHelperAppTest, EndsWithAnErrorWhenTheSessionBusGoesAway) {
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs(launched));
    sessionBus_.stop();
    expectEnd(helper, ElementsAre(_, _, launched, "error The session bus went away", terminated), EXIT_FAILURE);

    HelperProcess busless(systemBus_, sessionBus_);
    expectEnd(busless, ElementsAre("error Failed to start: there is no session bus"), EXIT_FAILURE);
}

TEST_F(QuorvaleHelperAppTest, EndsOnceWithWhateverSignal) {
    for (const auto& signals : {std::vector{SIGINT}, {SIGHUP}, {SIGTERM, SIGTERM, SIGHUP}}) {
        HelperProcess helper(systemBus_, sessionBus_);
        ASSERT_TRUE(helper.logs(launched));
        std::ranges::for_each(signals, [&](int number) { helper.process().signal(number); });
        expectEnd(helper, ElementsAre(_, _, _, terminated));
    }
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs(launched));
    sessionBus_.stall();
    helper.process().terminate();
    expectEnd(helper, ElementsAre(_, _, _, terminated)); // with a bus that hangs
}

TEST_F(QuorvaleHelperAppTest, ServesWhatIsDueBetweenTwoNotifications) {
    const tests::AgentProcess agent(systemBus_, {"--state", R"({"active":true})"});
    const auto updater =
        QDBusConnection::connectToBus(QString::fromStdString(sessionBus_.address()), QStringLiteral("updater"));
    auto notification = QDBusMessage::createSignal(
        QStringLiteral("/"), QStringLiteral("com.quorvale.DistributedNotification"), QStringLiteral("QuorvaleHelper"));
    notification << QStringLiteral(R"({"running":false,"restart":true,"terminate":false})");
    constexpr auto restarts = 10;
    // With the event loop of GLib and that of Qt.
    for (const auto& withoutGlib : {std::optional<std::string>(), std::optional<std::string>("1")}) {
        auto environment = HelperProcess::on(systemBus_, sessionBus_);
        environment["QT_NO_GLIB"] = withoutGlib;
        HelperProcess helper(environment);
        ASSERT_TRUE(helper.logs(launched));
        for (int restart = 0; restart < restarts; ++restart) {
            EXPECT_TRUE(updater.send(notification));
        }
        ASSERT_TRUE(helper.logs("info Initial State Changed: true")) << "a request that was due meanwhile";
        helper.process().terminate();
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
        const auto lines = helper.log();
        EXPECT_LT(std::ranges::count(lines, "info Helper XPC: Attempting to connect to agent"), restarts);
        EXPECT_EQ(std::ranges::count(lines, terminated), 1);
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("updater"));
}

TEST_F(QuorvaleHelperAppTest, RunsOnceInASession) {
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs(launched));
    HelperProcess second(systemBus_, sessionBus_);
    expectEnd(second, testing::IsEmpty());
    EXPECT_TRUE(helper.process().running());

    helper.process().signal(SIGSTOP);
    HelperProcess third(systemBus_, sessionBus_);
    expectEnd(third, ElementsAre("error Failed to start: the helper that already runs does not answer"), EXIT_FAILURE);
}

TEST_F(QuorvaleHelperAppTest, RunsOnceAlsoWhereTwoStartAtTheSameMoment) {
    for (int round = 0; round < 20; ++round) {
        std::array<std::unique_ptr<HelperProcess>, 2> helpers;
        for (auto& helper : helpers) {
            helper = std::make_unique<HelperProcess>(systemBus_, sessionBus_);
        }
        const auto runs = [](const auto& helper) { return helper->process().running(); };
        ASSERT_TRUE(tests::waitUntil([&] { return std::ranges::count_if(helpers, runs) == 1; }));
        const bool isFirst = runs(helpers[0]);
        expectEnd(*helpers[isFirst ? 1 : 0], testing::IsEmpty());
        ASSERT_TRUE(helpers[isFirst ? 0 : 1]->logs(launched));
    }
}

TEST_F(QuorvaleHelperAppTest, TakesThePlaceOfOneThatEndsInsteadOfAnswering) {
    std::atomic<bool> isAsked = false;
    auto first = std::make_unique<tests::BusPeer>(sessionBus_.address(),
                                                  [&](tests::BusPeer&, sd_bus_message*) { isAsked = true; });
    first->run([&] { first->own("com.quorvale.QuorvaleHelper"); });
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(tests::waitUntil([&] { return isAsked.load(); }));
    first.reset();
    EXPECT_TRUE(helper.logs(launched));
}

TEST_F(QuorvaleHelperAppTest, PassesItsLeaveToTakeTheFocusOnToTheOneThatRuns) {
    std::string received;
    tests::BusPeer first(sessionBus_.address(), [&](tests::BusPeer& self, sd_bus_message* call) {
        const char* token = "";
        const char* startupId = "";
        sd_bus_message_read(call, "a{sv}", 2, nullptr, "s", &token, nullptr, "s", &startupId);
        received += std::string(sd_bus_message_get_path(call)) + ' ' + sd_bus_message_get_interface(call) + ' ' +
                    sd_bus_message_get_member(call) + ' ' + token + ' ' + startupId;
        self.answer(call, "");
    });
    first.run([&] { first.own("com.quorvale.QuorvaleHelper"); });
    auto environment = HelperProcess::on(systemBus_, sessionBus_);
    environment["XDG_ACTIVATION_TOKEN"] = "token-1";
    environment["DESKTOP_STARTUP_ID"] = "id_TIME1";
    // The session asks for no window.
    for (const auto& arguments : std::vector<std::vector<std::string>>{{"--background"}, {"-session", "1_2"}, {}}) {
        HelperProcess second(environment, arguments);
        expectEnd(second, testing::IsEmpty());
    }
    first.run([&] {
        EXPECT_EQ(received, "/com/quorvale/QuorvaleHelper org.freedesktop.Application Activate token-1 id_TIME1");
    });
}

TEST_F(QuorvaleHelperAppTest, EndsWithAnErrorWhereItMayNotHaveItsName) {
    const tests::PrivateBus strictBus("com.quorvale.QuorvaleHelper");
    for (const auto& arguments : std::vector<std::vector<std::string>>{{}, {"--background"}}) {
        HelperProcess helper(systemBus_, strictBus, arguments);
        expectEnd(helper,
                  ElementsAre("error Failed to start: the session bus refuses the name, and no other instance answers"),
                  EXIT_FAILURE);
    }
}

TEST_F(QuorvaleHelperAppTest, KnowsItsArgumentsWithoutADesktop) {
    const HelperProcess::Environment nowhere{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"},
                                             {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere"},
                                             {"DISPLAY", std::nullopt},
                                             {"WAYLAND_DISPLAY", std::nullopt},
                                             {"QT_QPA_PLATFORM", std::nullopt}};
    const std::vector<std::string> known{"--background", "-platform", "offscreen", "--session",    "1_2",
                                         "-reverse",     "-style",    "fusion",    "-style=fusion"};

    const struct {
        std::vector<std::string> arguments;
        int status;
        const char* firstLine;
    } cases[] = {
        {{"--help", "--wrong"}, 0, "Usage: QuorvaleHelper [OPTION...]"},
        {{"--version"}, 0, "QuorvaleHelper 1.0.0 (1)"},
        {{"-platform", "--help", "--wrong"}, 2, "QuorvaleHelper: unknown argument: --wrong"},
        {{"wrong"}, 2, "QuorvaleHelper: unknown argument: wrong"},
        {{""}, 2, "QuorvaleHelper: unknown argument: "},
    };

    for (const auto& [arguments, status, firstLine] : cases) {
        auto all = known;
        all.insert(all.end(), arguments.begin(), arguments.end());
        HelperProcess helper(nowhere, all);
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = status})) << firstLine;
        ASSERT_THAT(helper.process().lines(), testing::Not(testing::IsEmpty()));
        EXPECT_EQ(helper.process().lines().front(), firstLine);
    }
    HelperProcess helper(systemBus_, sessionBus_, known);
    EXPECT_TRUE(helper.logs(launched));
}

} // namespace quorvale::app
