#include "faults/FaultsTest.hpp"

#include <QDBusConnection>
#include <QDBusMessage>

#include <algorithm>

namespace quorvale::tests {

namespace {

using BusFaultsTest = FaultsTest;

} // namespace

TEST_F(BusFaultsTest, ConnectsOnceTheSystemBusIsBack) {
    systemBus_.stop();
    HelperProcess helper(environment_);
    ASSERT_TRUE(helper.logs(launched));
    helper.notify(restart);
    ASSERT_TRUE(helper.logs(notConnected));
    ASSERT_TRUE(helper.logs(told));
    EXPECT_TRUE(helper.shows("Unprotected"));

    // Absent at first, then lost while connected.
    for (const std::ptrdiff_t losses : {1, 2}) {
        systemBus_.start();
        const AgentProcess agent(systemBus_, {"--state", active});
        helper.notify(restart);
        ASSERT_TRUE(waitUntil([&] { return std::ranges::count(helper.log(), stateKnown) == losses; }));
        EXPECT_TRUE(helper.shows("Protected"));
        systemBus_.stop();
        ASSERT_TRUE(waitUntil([&] { return std::ranges::count(helper.log(), invalidated) == losses; }));
        EXPECT_TRUE(helper.shows("Protected"));
    }
    EXPECT_THAT(helper.log(), testing::Each(testing::Not(testing::StartsWith("error"))));
    end(helper);
}

TEST_F(BusFaultsTest, IsThereForTheUserWhileTheSystemBusStandsStill) {
    const AgentProcess agent(systemBus_, {"--state", active});
    HelperProcess helper(environment_);
    ASSERT_TRUE(helper.logs(launched));
    systemBus_.stall();
    helper.notify(restart);
    ASSERT_TRUE(helper.logs(told));
    const auto bus =
        QDBusConnection::connectToBus(QString::fromStdString(sessionBus_.address()), QStringLiteral("launcher"));
    auto activate = QDBusMessage::createMethodCall(
        QStringLiteral("com.quorvale.QuorvaleHelper"), QStringLiteral("/com/quorvale/QuorvaleHelper"),
        QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    activate << QVariantMap();
    EXPECT_EQ(bus.call(activate, QDBus::Block, 1000).type(), QDBusMessage::ReplyMessage) << "the window does not open";
    QDBusConnection::disconnectFromBus(QStringLiteral("launcher"));
    EXPECT_TRUE(helper.shows("Unprotected"));
    systemBus_.goOn();
    EXPECT_TRUE(helper.logs(stateKnown));

    const auto before = helper.log().size();
    systemBus_.stall();
    helper.notify(restart);
    ASSERT_TRUE(helper.logs(told, before));
    end(helper);
    EXPECT_EQ(helper.log().back(), "info Quorvale Helper terminated");
}

} // namespace quorvale::tests
