#include "support/AgentProcess.hpp"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace quorvale::tests {

namespace {

constexpr auto agentName = "QVL7T4M2XK.com.quorvale.QuorvaleFilter";

/// What a client of the agent must be for the agent to call it.
class Client final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quorvale.ClientCommunication")

public:
    std::vector<bool> statuses;
    std::vector<std::string> senders;

public Q_SLOTS:

    void updateProtectionStatus(bool value) {
        statuses.push_back(value);
        senders.push_back(message().service().toStdString());
    }

    void promptUserWithAboutFlow(const QVariantMap& /*flow*/, const QString& /*domain*/, const QString& /*processName*/,
                                 const QString& /*type*/, const QString& /*id*/, double /*epoch*/) {}
};

class AgentProcessTest : public testing::Test {
public:
    ~AgentProcessTest() override { QDBusConnection::disconnectFromBus(QStringLiteral("client")); }

protected:
    AgentProcessTest()
        : connection_(QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), QStringLiteral("client"))) {
        connection_.registerObject(QStringLiteral("/com/quorvale/QuorvaleHelper"), &client_,
                                   QDBusConnection::ExportAllSlots);
    }

    QDBusMessage call(const char* method, const QVariantList& arguments = {}) {
        auto message = QDBusMessage::createMethodCall(
            QString::fromLatin1(agentName), QStringLiteral("/com/quorvale/QuorvaleFilter"),
            QStringLiteral("com.quorvale.AgentCommunication"), QString::fromLatin1(method));
        message.setArguments(arguments);
        const QDBusPendingCallWatcher answer(connection_.asyncCall(message));
        EXPECT_TRUE(waitUntil([&] { return answer.isFinished(); }));
        return answer.reply();
    }

    void registerClient() { call("registerClientWith", {QStringLiteral("org.example.Client")}); }

    PrivateBus bus_;
    QDBusConnection connection_;
    Client client_;
};

} // namespace

TEST_F(AgentProcessTest, EndsAsItIsTold) {
    AgentProcess quitting(bus_);
    Process second({.program = "/proc/" + std::to_string(quitting.process().pid()) + "/exe",
                    .arguments = {},
                    .environment = {{"DBUS_SYSTEM_BUS_ADDRESS", bus_.address()}},
                    .errorOutput = Process::ErrorOutput::Merged});
    EXPECT_TRUE(second.waitForLine("is taken"));
    EXPECT_EQ(second.waitForExit(), (Process::Exit{.code = 1, .bySignal = false}));

    quitting.command("quit");
    EXPECT_EQ(quitting.process().waitForExit(), (Process::Exit{.code = 0, .bySignal = false}));
    AgentProcess crashing(bus_);
    crashing.command("crash");
    EXPECT_EQ(crashing.process().waitForExit(), (Process::Exit{.code = SIGABRT, .bySignal = true}));
}

TEST_F(AgentProcessTest, AnswersEachMethodWithItsSignature) {
    AgentProcess agent(bus_);

    const struct {
        const char* method;
        QVariantList arguments;
        const char* signature;
    } cases[] = {
        {"registerClientWith", {QStringLiteral("org.example.Client")}, ""},
        {"updateSharedDefaultsWith", {QVariantMap{{QStringLiteral("key"), 1}}}, "b"},
        {"updateGeoDefaults", {}, "s"},
        {"agentState", {}, "as"},
        {"reloadCloud", {}, ""},
    };

    for (const auto& [method, arguments, signature] : cases) {
        const auto reply = call(method, arguments);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << method;
        EXPECT_EQ(reply.signature().toStdString(), signature) << method;
        EXPECT_TRUE(agent.waitForEvent(std::string("call ") + method + " :1."));
    }
    EXPECT_EQ(call("agentState", {1}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(AgentProcessTest, AnswersTheStateAsItIsTold) {
    AgentProcess agent(bus_, {"--state", R"({"active":true})"});
    EXPECT_EQ(call("agentState").arguments().value(0).toStringList(),
              QStringList(QStringLiteral(R"({"active":true})")));
    agent.command("state none");
    EXPECT_EQ(call("agentState").arguments(), QVariantList{QStringList()});
    agent.command("state error org.example.Error it is so");
    EXPECT_EQ(call("agentState").errorName().toStdString(), "org.example.Error");
}

TEST_F(AgentProcessTest, HoldsALateAnswerUntilItIsTold) {
    AgentProcess agent(bus_, {"--state", "late none"});
    auto message =
        QDBusMessage::createMethodCall(QString::fromLatin1(agentName), QStringLiteral("/com/quorvale/QuorvaleFilter"),
                                       QStringLiteral("com.quorvale.AgentCommunication"), QStringLiteral("agentState"));
    const QDBusPendingCallWatcher answer(connection_.asyncCall(message));
    EXPECT_TRUE(agent.waitForEvent("held agentState"));
    call("updateGeoDefaults");
    EXPECT_FALSE(answer.isFinished());
    agent.command("answer");
    EXPECT_TRUE(waitUntil([&] { return answer.isFinished(); }));
    EXPECT_FALSE(answer.isError());
}

TEST_F(AgentProcessTest, CallsTheRegisteredClientAsItselfAndAsAnImpostor) {
    AgentProcess agent(bus_);
    registerClient();
    EXPECT_TRUE(agent.waitForEvent("registered " + connection_.baseService().toStdString() + " org.example.Client"));
    agent.command("updateProtectionStatus true");
    EXPECT_TRUE(agent.waitForEvent("push-result updateProtectionStatus ok"));
    agent.command("impostor updateProtectionStatus false");
    EXPECT_TRUE(agent.waitForEvent("impostor-result updateProtectionStatus ok"));
    agent.command(R"(promptUserWithAboutFlow '{"a key":[1,"two"]}' 'a domain')");
    EXPECT_TRUE(agent.waitForEvent("push-result promptUserWithAboutFlow ok"));
    for (const auto* hostile :
         {"updateProtectionStatus s:true", "updateProtectionStatus -", "updateProtectionStatus true more"}) {
        agent.command(hostile);
        const auto result = agent.waitForEvent("push-result updateProtectionStatus");
        EXPECT_TRUE(result && result->contains("error org.freedesktop.DBus.Error.UnknownMethod")) << hostile;
    }
    EXPECT_EQ(client_.statuses, (std::vector{true, false}));
    ASSERT_EQ(client_.senders.size(), 2U);
    EXPECT_NE(client_.senders[0], client_.senders[1]);
}

TEST_F(AgentProcessTest, GivesUpItsNameAndComesBackAsAnother) {
    AgentProcess agent(bus_);
    registerClient();
    agent.command("release");
    EXPECT_TRUE(agent.waitForEvent("released"));
    EXPECT_EQ(call("agentState").type(), QDBusMessage::ErrorMessage);
    agent.command("acquire");
    const auto before = agent.waitForEvent("ready");
    agent.command("restart");
    const auto after = agent.waitForEvent("ready");
    ASSERT_TRUE(before && after);
    EXPECT_NE(after, before) << "the bus must see another connection";
    agent.command("clients");
    EXPECT_EQ(agent.waitForEvent("clients"), "clients") << "a new agent knows no client";
    agent.command("updateProtectionStatus true");
    EXPECT_TRUE(agent.waitForEvent("command-failed"));
    agent.command("quit");
    EXPECT_EQ(agent.process().waitForExit(), (Process::Exit{.code = 3, .bySignal = false}));
}

} // namespace quorvale::tests

#include "AgentProcessTest.moc"
