#include "support/PrivateBus.hpp"

#include <QDBusConnection>
#include <gtest/gtest.h>

namespace quorvale::tests {

namespace {

QDBusConnection connect(const PrivateBus& bus, const char* name) {
    return QDBusConnection::connectToBus(QString::fromStdString(bus.address()), QString::fromLatin1(name));
}

} // namespace

TEST(PrivateBusTest, LetsOneOwnAnyNameButTheDeniedOne) {
    const PrivateBus bus({.unownableName = "org.example.Denied"});
    auto connection = connect(bus, "policy");
    EXPECT_TRUE(connection.registerService(QStringLiteral("org.example.Free")));
    EXPECT_FALSE(connection.registerService(QStringLiteral("org.example.Denied")));
    QDBusConnection::disconnectFromBus(QStringLiteral("policy"));
}

TEST(PrivateBusTest, ComesBackOnTheSameAddress) {
    PrivateBus bus;
    const auto address = bus.address();
    auto before = connect(bus, "before");
    ASSERT_TRUE(before.isConnected());
    bus.stop();
    EXPECT_TRUE(waitUntil([&] { return !before.isConnected(); }));
    EXPECT_FALSE(connect(bus, "meanwhile").isConnected());
    bus.restart();
    EXPECT_EQ(bus.address(), address);
    EXPECT_TRUE(connect(bus, "after").isConnected());
    for (const auto* name : {"before", "meanwhile", "after"}) {
        QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }
}

} // namespace quorvale::tests
