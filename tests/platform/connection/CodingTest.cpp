#include "platform/connection/Connection.hpp"
#include "support/PrivateBus.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

namespace quorvale::platform::connection {

namespace {

constexpr Request<std::string, Dictionary> storeIt{"store", {"values"}};

struct Sink {
    void take(Dictionary values) {
        taken = std::move(values);
        done = true;
    }

    Dictionary taken;
    std::atomic<bool> done = false;
};

/// A service that hands the dictionary it gets back to its caller, as it came over the bus.
class Echo final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        auto back = QDBusMessage::createMethodCall(message.service(), QStringLiteral("/client"),
                                                   QStringLiteral("org.example.Client"), QStringLiteral("take"));
        back.setArguments(message.arguments());
        connection.send(back);
        connection.send(message.createReply(message.signature()));
        return true;
    }
};

} // namespace

TEST(CodingTest, CarriesEveryPropertyListValueThereAndBack) {
    const tests::PrivateBus bus;
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", QByteArray::fromStdString(bus.address()));
    auto service = QDBusConnection::connectToBus(QString::fromStdString(bus.address()), QStringLiteral("service"));
    Echo echo;
    ASSERT_TRUE(service.registerVirtualObject(QStringLiteral("/service"), &echo));
    ASSERT_TRUE(service.registerService(QStringLiteral("org.example.Service")));

    const auto sink = std::make_shared<Sink>();
    const auto connection = Connection::toService({"org.example.Service", "/service", "/client"});
    ASSERT_TRUE(connection);
    connection->setRemoteObjectInterface({"org.example.Service", {describe(storeIt)}});
    connection->setExportedInterface(
        ExportedInterface<Sink>("org.example.Client").method(OneWay<Dictionary>{"take", {"values"}}, &Sink::take),
        sink);
    connection->resume();

    const Dictionary values{
        {"array", {std::vector<PropertyList>{{std::string("a")}, {std::int64_t{-1}}, {Dictionary{{"k", {true}}}}}}},
        {"boolean", {false}},
        {"data", {std::vector{std::byte{0}, std::byte{255}}}},
        {"date", {Date{1234567.5}}},
        {"dictionary", {Dictionary{{"inner", {std::string("⚠️")}}}}},
        {"double", {0.25}},
        {"integer", {std::int64_t{1} << 62}},
        {"text", {std::string("plain")}},
    };
    std::optional<Error> failure;
    std::atomic<bool> replied = false;
    connection->remoteObjectProxyWithErrorHandler([&](const Error& error) { failure = error; })
        .send(storeIt, [&](const std::string& signature) { replied = signature == "a{sv}"; }, values);

    EXPECT_TRUE(tests::waitUntil([&] { return replied.load() && sink->done.load(); }));
    EXPECT_EQ(sink->taken, values);
    EXPECT_FALSE(failure);
    QDBusConnection::disconnectFromBus(QStringLiteral("service"));
}

} // namespace quorvale::platform::connection
