#include "agent_link/HelperXPC.hpp"

#include "agent_link/AgentCommunication.hpp"
#include "support/AgentProcess.hpp"
#include "support/RecordedLog.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <ranges>
#include <string>
#include <vector>

namespace quorvale::agent_link {

namespace {

using namespace std::chrono_literals;
using platform::connection::Connection;
using testing::ElementsAre;
using testing::StartsWith;
using tests::AgentProcess;
using tests::PrivateBus;
using tests::waitUntil;

constexpr auto registered = "call registerClientWith";
constexpr auto asked = "call agentState";
constexpr auto agentActive = R"({"active":true})";

class HelperXPCTest : public testing::Test {
protected:
    HelperXPCTest() {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", QByteArray::fromStdString(bus_.address()));
        observation_ = status_->objectWillChange([this] { ++notifications_; });
    }

    void TearDown() override {
        if (const auto& connection = link_->clientConnection()) {
            connection->invalidate();
            EXPECT_TRUE(waitUntil([&] { return log_.count(invalidated) == log_.count(resumed); }));
        }
    }

    static std::vector<std::string> events(const AgentProcess& agent, std::string_view beginning) {
        std::vector<std::string> found;
        std::ranges::copy_if(agent.events(), std::back_inserter(found),
                             [&](const auto& event) { return event.starts_with(beginning); });
        return found;
    }

    /// The helper's name on the bus.
    static std::string clientOf(const AgentProcess& agent) {
        const auto client = events(agent, "registered ").front();
        return client.substr(11, client.find(' ', 11) - 11);
    }

    bool logged(std::string_view line, std::ptrdiff_t times = 1) {
        return waitUntil([&] { return log_.count(line) >= times; });
    }

    /// Connects to `agent` and returns when the helper has applied its state.
    void connect(AgentProcess& agent) {
        link_->connectToAgent();
        ASSERT_TRUE(agent.waitForEvent("replied agentState"));
        ASSERT_TRUE(logged("Initial State Changed: true"));
        ASSERT_TRUE(waitUntil([&] { return status_->status(); }));
    }

    /// Everything that the agent sent before has been dealt with when this returns.
    void exchangeMessage(AgentProcess& agent) {
        agent.command("updateRulesStatus true");
        ASSERT_TRUE(agent.waitForEvent("push-result updateRulesStatus"));
    }

    static constexpr auto invalidated = "Helper XPC: Connection invalidated";
    static constexpr auto interrupted = "Helper XPC: Connection interrupted";
    static constexpr auto resumed = "Helper XPC: Connection resumed";
    static constexpr auto proxyError = "error: Error creating provider proxy: <private>";

    PrivateBus bus_;
    tests::RecordedLog log_;
    platform::queue::MainQueue mainQueue_;
    std::shared_ptr<status::StatusManager> status_ = std::make_shared<status::StatusManager>(mainQueue_);
    platform::observable::Subscription observation_;
    int notifications_ = 0;
    std::vector<std::chrono::seconds> pauses_;
    std::shared_ptr<HelperXPC> link_ = std::make_shared<HelperXPC>(HelperXPC::Collaborators{
        .mainQueue = mainQueue_,
        .logger = log_.logger(),
        .makeConnection = [] { return Connection::toService(HelperXPC::agentService()); },
        .sleep = [this](std::chrono::seconds duration) { pauses_.push_back(duration); },
        .statusManager = [this] { return status_; },
    });
};

/// With an agent that is active, and the helper connected to it.
class ConnectedHelperXPCTest : public HelperXPCTest {
protected:
    void SetUp() override { connect(agent_); }

    AgentProcess agent_{bus_, {"--state", agentActive}};
};

} // namespace

TEST_F(HelperXPCTest, RegistersBeforeItAsksForTheState) {
    AgentProcess agent(bus_, {"--state", agentActive});
    const auto start = std::chrono::steady_clock::now();
    link_->connectToAgent();
    ASSERT_TRUE(agent.waitForEvent(registered));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 500ms);
    ASSERT_TRUE(agent.waitForEvent(asked));
    ASSERT_TRUE(waitUntil([&] { return status_->status(); }));
    exchangeMessage(agent);

    EXPECT_THAT(events(agent, "call "), ElementsAre(StartsWith(registered), StartsWith(asked)));
    EXPECT_THAT(events(agent, "registered "), ElementsAre(testing::EndsWith(" com.quorvale.QuorvaleHelper")));
    EXPECT_THAT(pauses_, ElementsAre(1s));
    EXPECT_THAT(log_.lines(),
                ElementsAre("Helper XPC: Attempting to connect to agent", "Helper XPC: resuming XPC connection",
                            resumed, "Initial State Changed: true"));
}

TEST_F(ConnectedHelperXPCTest, ReplacesTheConnectionWhenToldToConnectAgain) {
    const auto first = link_->clientConnection();
    connect(agent_);
    ASSERT_TRUE(logged(invalidated));
    EXPECT_NE(link_->clientConnection(), first);
    EXPECT_TRUE(waitUntil([&] { return events(agent_, "client-gone").size() == 1; }));
    EXPECT_EQ(events(agent_, registered).size(), 2U);
    EXPECT_EQ(events(agent_, asked).size(), 2U);

    const auto lines = log_.lines();
    const auto again = std::ranges::find(lines | std::views::drop(1), "Helper XPC: Attempting to connect to agent");
    EXPECT_EQ(*std::next(again), "Helper XPC: Invalidating existing connection");
    EXPECT_EQ(log_.count(resumed), 2);
    EXPECT_EQ(log_.count(invalidated), 1);
}

TEST_F(HelperXPCTest, RunsARegistrationOnTheReplacedConnectionForWhichItWasQueued) {
    AgentProcess agent(bus_, {"--state", agentActive});
    link_->connectToAgent();
    connect(agent);
    EXPECT_TRUE(logged("error: Failed to register client with agent: <private>"));
    ASSERT_TRUE(waitUntil([&] { return !events(agent, registered).empty(); }));
    exchangeMessage(agent);
    EXPECT_EQ(events(agent, registered).size(), 1U);
}

TEST_F(HelperXPCTest, ReportsAMissingServiceThroughEachErrorHandler) {
    link_->connectToAgent();
    ASSERT_TRUE(logged(proxyError));
    EXPECT_THAT(log_.lines(), ElementsAre("Helper XPC: Attempting to connect to agent",
                                          "Helper XPC: resuming XPC connection", resumed, invalidated,
                                          "error: Failed to register client with agent: <private>", proxyError));
    EXPECT_NE(link_->clientConnection(), nullptr);
    EXPECT_EQ(notifications_, 0);
}

TEST_F(HelperXPCTest, ReachesTheNextOwnerAfterAnInterruptionWithoutRegisteringAgain) {
    auto agent = std::make_optional<AgentProcess>(bus_, std::vector<std::string>{"--state", agentActive});
    connect(*agent);
    agent->command("crash");
    ASSERT_TRUE(logged(interrupted));
    EXPECT_TRUE(status_->status());

    agent.emplace(bus_, std::vector<std::string>{"--state", R"({"active":false})"});
    link_->requestAgentState();
    ASSERT_TRUE(waitUntil([&] { return !status_->status(); }));
    EXPECT_THAT(events(*agent, "call "), ElementsAre(StartsWith(asked)));
    EXPECT_EQ(log_.count(interrupted), 1);
    EXPECT_EQ(log_.count(invalidated), 0);
}

TEST_F(ConnectedHelperXPCTest, AnswersOnlyAReplyThatCarriesAState) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"none", {}},
        {"text {}",
         {"error: Failed to decode the agent state: key not found (active) at top level: No value for this key."}},
        {"several", {proxyError}},
        {"wrong-type", {proxyError}},
        {"error", {proxyError}},
    };
    for (const auto& [reply, expected] : cases) {
        const auto before = log_.lines().size();
        const auto notificationsBefore = notifications_;
        agent_.command(std::string("state ") + reply);
        link_->requestAgentState();
        ASSERT_TRUE(agent_.waitForEvent(asked));
        exchangeMessage(agent_);
        const auto lines = log_.lines();
        EXPECT_EQ(std::vector(lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end()), expected) << reply;
        EXPECT_EQ(notifications_, notificationsBefore) << reply;
    }
    EXPECT_TRUE(status_->status());
}

TEST_F(HelperXPCTest, WaitsForALateReplyAndFailsOneThatCanNoLongerCome) {
    AgentProcess agent(bus_, {"--state", "late {\"active\":true}"});
    link_->connectToAgent();
    ASSERT_TRUE(agent.waitForEvent("held"));
    EXPECT_FALSE(status_->status());
    // Who has given the name up may still answer what reached it.
    agent.command("release");
    ASSERT_TRUE(logged(interrupted));
    agent.command("answer");
    EXPECT_TRUE(waitUntil([&] { return status_->status(); }));

    agent.command("acquire");
    ASSERT_TRUE(agent.waitForEvent("ready"));
    agent.command("state never");
    link_->requestAgentState();
    ASSERT_TRUE(agent.waitForEvent(asked));
    link_->requestAgentState();
    ASSERT_TRUE(agent.waitForEvent(asked));
    agent.command("crash");
    EXPECT_TRUE(logged(proxyError, 2));
    link_->clientConnection()->invalidate();
    ASSERT_TRUE(logged(invalidated));
    EXPECT_EQ(log_.count(proxyError), 2);
}

TEST_F(HelperXPCTest, AppliesEveryPushAlsoOfAnEqualValue) {
    AgentProcess agent(bus_, {"--state", "none"});
    link_->connectToAgent();
    ASSERT_TRUE(agent.waitForEvent("replied agentState"));
    for (const auto* value : {"true", "true"}) {
        agent.command(std::string("updateProtectionStatus ") + value);
        EXPECT_EQ(agent.waitForEvent("push-result"), "push-result updateProtectionStatus ok");
    }
    EXPECT_TRUE(waitUntil([&] { return notifications_ == 2; }));
    EXPECT_TRUE(status_->status());
    EXPECT_EQ(log_.count("Helper: Agent State: true"), 2);
}

TEST_F(ConnectedHelperXPCTest, RefusesAStrangersCalls) {
    const auto lines = log_.lines();
    const auto refused = testing::HasSubstr("updateProtectionStatus error org.freedesktop.DBus.Error.AccessDenied");
    agent_.command("impostor updateProtectionStatus false");
    EXPECT_THAT(agent_.waitForEvent("impostor-result").value_or(""), refused);

    // A stranger may tell the helper that the agent's name has changed hands, in the bus's words but not in its name.
    const auto name = QString::fromStdString(clientOf(agent_));
    auto stranger = QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), QStringLiteral("stranger"));
    auto lie =
        QDBusMessage::createTargetedSignal(name, QStringLiteral("/org/freedesktop/DBus"),
                                           QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"));
    lie << QString::fromStdString(HelperXPC::agentService().name) << QString() << stranger.baseService();
    auto call = QDBusMessage::createMethodCall(name, QStringLiteral("/com/quorvale/QuorvaleHelper"),
                                               QStringLiteral("com.quorvale.ClientCommunication"),
                                               QStringLiteral("updateProtectionStatus"));
    call << false;
    stranger.send(lie);
    EXPECT_EQ(stranger.call(call).errorName(), QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"));
    QDBusConnection::disconnectFromBus(QStringLiteral("stranger"));

    agent_.command("release");
    ASSERT_TRUE(logged(interrupted));
    agent_.command("updateProtectionStatus false");
    EXPECT_THAT(agent_.waitForEvent("push-result").value_or(""), refused);
    EXPECT_EQ(log_.lines().size(), lines.size() + 1);
    EXPECT_TRUE(status_->status());
}

TEST_F(HelperXPCTest, SendsNothingWithoutAConnectionOrTheAgentsInterface) {
    link_->requestAgentState();
    EXPECT_THAT(log_.lines(), ElementsAre("error: Failed to create a remote object proxy for the provider"));

    const auto plain = Connection::toService(HelperXPC::agentService());
    link_->registerClient(*plain);
    EXPECT_EQ(log_.lines().back(), "error: Failed to cast register client remote object proxy");
}

TEST(AgentCommunicationTest, DeclaresTheAgentsFiveMethods) {
    using platform::connection::Method;
    using platform::connection::Type;
    EXPECT_THAT(AgentCommunication::interface().methods,
                ElementsAre(Method{"registerClientWith", {{"identity", Type::text}}, std::nullopt},
                            Method{"updateSharedDefaultsWith", {{"defaults", Type::dictionary}}, Type::boolean},
                            Method{"updateGeoDefaults", {}, Type::text}, Method{"agentState", {}, Type::optionalText},
                            Method{"reloadCloud", {}, std::nullopt}));
}

} // namespace quorvale::agent_link
