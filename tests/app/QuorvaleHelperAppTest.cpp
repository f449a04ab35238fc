#include "support/AgentProcess.hpp"
#include "support/HelperProcess.hpp"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
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

/// Answers as an instance that runs.
class FirstInstance final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        call = message;
        return connection.send(message.createReply());
    }

    QDBusMessage call;
};

/// The helper as it is installed, on buses of its own.
class QuorvaleHelperAppTest : public testing::Test {
protected:
    tests::PrivateBus systemBus_;
    tests::PrivateBus sessionBus_;
};

} // namespace

TEST_F(QuorvaleHelperAppTest, StartsWithoutConnectingAndEndsInOrder) {
    const tests::AgentProcess agent(systemBus_);
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
    helper.process().terminate();
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
    EXPECT_THAT(helper.log(), ElementsAre("info Quorvale Helper Started...", "info Version: 1.0.0 (1)",
                                          "info Quorvale Helper launched", "info Quorvale Helper terminated"));
    EXPECT_THAT(agent.events(), ElementsAre(StartsWith("ready")));
}

TEST_F(QuorvaleHelperAppTest, ConnectsWhenTheUpdaterSaysSoAndStartsToReconnectBeforeItQuits) {
    tests::AgentProcess const agent(systemBus_, {"--state", R"({"active":true})"});
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
    helper.notify(R"({"running":false,"restart":true,"terminate":false})");
    ASSERT_TRUE(helper.logs("info Initial State Changed: true"));
    helper.notify(R"({"running":true,"restart":true,"terminate":true})");
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));

    auto lines = helper.log();
    // The old connection's end is reported on its own queue, whenever that comes to it.
    std::erase(lines, "info Helper XPC: Connection invalidated");
    EXPECT_THAT(std::vector(lines.begin() + 3, lines.end()),
                ElementsAre("info Helper XPC: Attempting to connect to agent",
                            "info Helper XPC: resuming XPC connection", "info Helper XPC: Connection resumed",
                            "info Received notification: false", "info Initial State Changed: true",
                            "info Helper XPC: Attempting to connect to agent",
                            "info Helper XPC: Invalidating existing connection",
                            "info Helper XPC: resuming XPC connection", "info Helper XPC: Connection resumed",
                            "info Updater: Terminating Helper", "info Quorvale Helper terminated"));
}

TEST_F(QuorvaleHelperAppTest, EndsWithAnErrorWhenTheSessionBusGoesAway) {
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
    sessionBus_.stop();
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_FAILURE}));
    const auto lines = helper.log();
    EXPECT_THAT(std::vector(lines.begin() + 3, lines.end()),
                ElementsAre("error The session bus went away", "info Quorvale Helper terminated"));

    HelperProcess busless(systemBus_, sessionBus_);
    EXPECT_EQ(busless.process().waitForExit(), (Process::Exit{.code = EXIT_FAILURE}));
    EXPECT_THAT(busless.log(), ElementsAre("error Failed to start: there is no session bus"));
}

TEST_F(QuorvaleHelperAppTest, EndsOnceWithWhateverSignal) {
    for (const auto& signals : {std::vector{SIGINT}, {SIGHUP}, {SIGTERM, SIGTERM, SIGHUP}}) {
        HelperProcess helper(systemBus_, sessionBus_);
        ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
        std::ranges::for_each(signals, [&](int number) { helper.process().signal(number); });
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
        EXPECT_THAT(helper.log(), ElementsAre(_, _, _, "info Quorvale Helper terminated"));
    }
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
    sessionBus_.stall();
    helper.process().terminate();
    EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS})) << "with a bus that hangs";
    EXPECT_THAT(helper.log(), ElementsAre(_, _, _, "info Quorvale Helper terminated"));
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
        HelperProcess helper({{"DBUS_SYSTEM_BUS_ADDRESS", systemBus_.address()},
                              {"DBUS_SESSION_BUS_ADDRESS", sessionBus_.address()},
                              {"QT_QPA_PLATFORM", "offscreen"},
                              {"QT_NO_GLIB", withoutGlib}});
        ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
        for (int restart = 0; restart < restarts; ++restart) {
            EXPECT_TRUE(updater.send(notification));
        }
        ASSERT_TRUE(helper.logs("info Initial State Changed: true")) << "a request that was due meanwhile";
        helper.process().terminate();
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
        const auto lines = helper.log();
        EXPECT_LT(std::ranges::count(lines, "info Helper XPC: Attempting to connect to agent"), restarts);
        EXPECT_EQ(std::ranges::count(lines, "info Quorvale Helper terminated"), 1);
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("updater"));
}

TEST_F(QuorvaleHelperAppTest, RunsOnceInASession) {
    HelperProcess helper(systemBus_, sessionBus_);
    ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
    HelperProcess second(systemBus_, sessionBus_);
    EXPECT_EQ(second.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
    EXPECT_THAT(second.log(), testing::IsEmpty());
    EXPECT_TRUE(helper.process().running());

    helper.process().signal(SIGSTOP);
    HelperProcess third(systemBus_, sessionBus_);
    EXPECT_EQ(third.process().waitForExit(), (Process::Exit{.code = EXIT_FAILURE}));
    EXPECT_THAT(third.log(), ElementsAre("error Failed to start: the helper that already runs does not answer"));
}

TEST_F(QuorvaleHelperAppTest, PassesItsLeaveToTakeTheFocusOnToTheOneThatRuns) {
    auto bus = QDBusConnection::connectToBus(QString::fromStdString(sessionBus_.address()), QStringLiteral("first"));
    FirstInstance first;
    ASSERT_TRUE(bus.registerVirtualObject(QStringLiteral("/com/quorvale/QuorvaleHelper"), &first));
    ASSERT_TRUE(bus.registerService(QStringLiteral("com.quorvale.QuorvaleHelper")));
    const HelperProcess::Environment environment{{"DBUS_SESSION_BUS_ADDRESS", sessionBus_.address()},
                                                 {"QT_QPA_PLATFORM", "offscreen"},
                                                 {"XDG_ACTIVATION_TOKEN", "token-1"},
                                                 {"DESKTOP_STARTUP_ID", "id_TIME1"}};
    for (const auto& started : std::vector<std::vector<std::string>>{{"--background"}, {"-session", "1_2"}}) {
        HelperProcess bySession(environment, started);
        EXPECT_EQ(bySession.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
        EXPECT_EQ(first.call.member(), QString()) << "nobody asked to see it";
    }
    HelperProcess second(environment);
    EXPECT_EQ(second.process().waitForExit(), (Process::Exit{.code = EXIT_SUCCESS}));
    EXPECT_EQ(first.call.interface(), QStringLiteral("org.freedesktop.Application"));
    EXPECT_EQ(first.call.member(), QStringLiteral("Activate"));
    EXPECT_EQ(qdbus_cast<QVariantMap>(first.call.arguments().value(0)),
              (QVariantMap{{QStringLiteral("activation-token"), QStringLiteral("token-1")},
                           {QStringLiteral("desktop-startup-id"), QStringLiteral("id_TIME1")}}));
    QDBusConnection::disconnectFromBus(QStringLiteral("first"));
}

TEST_F(QuorvaleHelperAppTest, EndsWithAnErrorWhereItMayNotHaveItsName) {
    const tests::PrivateBus strictBus("com.quorvale.QuorvaleHelper");
    for (const auto& arguments : std::vector<std::vector<std::string>>{{}, {"--background"}}) {
        HelperProcess helper(systemBus_, strictBus, arguments);
        EXPECT_EQ(helper.process().waitForExit(), (Process::Exit{.code = EXIT_FAILURE}));
        EXPECT_THAT(
            helper.log(),
            ElementsAre("error Failed to start: the session bus refuses the name, and no other instance answers"));
    }
}

TEST_F(QuorvaleHelperAppTest, TakesNoOtherArgumentsThanTheToolkitsAndItsOwn) {
    const std::vector<std::string> known{"-platform", "offscreen", "-style",      "fusion",
                                         "-session",  "1_2",       "--background"};
    auto oneMore = known;
    oneMore.emplace_back("--help");
    HelperProcess refused(systemBus_, sessionBus_, oneMore);
    EXPECT_EQ(refused.process().waitForExit(), (Process::Exit{.code = 2}));
    EXPECT_THAT(refused.process().lines(), testing::Contains("QuorvaleHelper: unknown argument: --help"));

    HelperProcess helper(systemBus_, sessionBus_, known);
    EXPECT_TRUE(helper.logs("info Quorvale Helper launched"));
}

} // namespace quorvale::app
