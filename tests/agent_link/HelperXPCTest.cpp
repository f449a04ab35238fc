#include "agent_link/HelperXPC.hpp"

#include "support/AgentProcess.hpp"
#include "support/RecordedLog.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
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
    HelperXPCTest() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", QByteArray::fromStdString(bus_.address())); }

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

    /// Everything that the agent sent before has been dealt with when this returns.
    void exchangeMessage(AgentProcess& agent) {
        agent.command("updateRulesStatus true");
        ASSERT_TRUE(agent.waitForEvent("push-result updateRulesStatus"));
    }

    static constexpr auto invalidated = "Helper XPC: Connection invalidated";
    static constexpr auto resumed = "Helper XPC: Connection resumed";
    static constexpr auto proxyError = "error: Error creating provider proxy: <private>";

    PrivateBus bus_;
    tests::RecordedLog log_;
    platform::queue::MainQueue mainQueue_;
    std::shared_ptr<status::StatusManager> status_ = std::make_shared<status::StatusManager>(mainQueue_);
    std::vector<std::chrono::seconds> pauses_;
    std::shared_ptr<HelperXPC> link_ = std::make_shared<HelperXPC>(HelperXPC::Collaborators{
        .mainQueue = mainQueue_,
        .logger = log_.logger(),
        .makeConnection = [] { return Connection::toService(HelperXPC::agentService()); },
        .sleep = [this](std::chrono::seconds duration) { pauses_.push_back(duration); },
        .statusManager = [this] { return status_; },
    });
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

TEST_F(HelperXPCTest, ReportsAMissingServiceThroughEachErrorHandler) {
    link_->connectToAgent();
    ASSERT_TRUE(waitUntil([&] { return log_.count(proxyError) > 0; }));
    EXPECT_THAT(log_.lines(), ElementsAre("Helper XPC: Attempting to connect to agent",
                                          "Helper XPC: resuming XPC connection", resumed, invalidated,
                                          "error: Failed to register client with agent: <private>", proxyError));
    EXPECT_NE(link_->clientConnection(), nullptr);
    EXPECT_FALSE(status_->status());
}

TEST_F(HelperXPCTest, BelievesOnlyTheBusWhoTheAgentIs) {
    const AgentProcess agent(bus_, {"--state", agentActive});
    link_->connectToAgent();
    ASSERT_TRUE(waitUntil([&] { return status_->status(); }));
    const auto lines = log_.lines();
    // A stranger may tell the helper that the agent's name has changed hands, in the bus's words but not in its name.
    const auto client = events(agent, "registered ").front();
    const auto name = QString::fromStdString(client.substr(11, client.find(' ', 11) - 11));
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
    EXPECT_EQ(log_.lines(), lines);
    EXPECT_TRUE(status_->status());
}

TEST_F(HelperXPCTest, SendsNothingWithoutAConnectionOrTheAgentsInterface) {
    link_->requestAgentState();
    EXPECT_THAT(log_.lines(), ElementsAre("error: Failed to create a remote object proxy for the provider"));

    const auto plain = Connection::toService(HelperXPC::agentService());
    link_->registerClient(*plain);
    EXPECT_EQ(log_.lines().back(), "error: Failed to cast register client remote object proxy");
}

} // namespace quorvale::agent_link
