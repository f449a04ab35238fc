#include "platform/connection/Connection.hpp"

#include "support/PrivateBus.hpp"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace quorvale::platform::connection {

namespace {

using testing::ElementsAre;
using tests::waitUntil;

constexpr auto failed = "failed: org.freedesktop.DBus.Error.Disconnected";
constexpr auto invalidated = "invalidated";

/// What happened on the connection's queue, in order.
class Events {
public:
    void add(std::string event) {
        const std::scoped_lock lock(mutex_);
        events_.push_back(std::move(event));
    }

    [[nodiscard]] std::vector<std::string> all() const {
        const std::scoped_lock lock(mutex_);
        return events_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> events_;
};

/// Never answers.
class Service final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*connection*/) override {
        client = message.service();
        return true;
    }

    QString client;
};

struct Client {
    void hold() {
        held = true;
        released.wait(false);
    }

    void push() { pushed = true; }

    void release() {
        released = true;
        released.notify_all();
    }

    std::atomic<bool> held = false;
    std::atomic<bool> released = false;
    std::atomic<bool> pushed = false;
};

} // namespace

class ConnectionTest : public testing::Test {
protected:
    ConnectionTest()
        : service_(QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), QStringLiteral("service"))) {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", QByteArray::fromStdString(bus_.address()));
    }

    ~ConnectionTest() override {
        client_->release();
        QDBusConnection::disconnectFromBus(QStringLiteral("service"));
    }

    /// Connects with a message that is not answered.
    void SetUp() override {
        ASSERT_TRUE(service_.registerVirtualObject(QStringLiteral("/service"), &object_));
        ASSERT_TRUE(service_.registerService(QStringLiteral("org.example.Service")));
        connection_ = Connection::toService({"org.example.Service", "/service", "/client"});
        ASSERT_TRUE(connection_);
        static constexpr Request<bool> ask{"ask", {}};
        connection_->setRemoteObjectInterface({"org.example.Service", {describe(ask)}});
        connection_->setExportedInterface(ExportedInterface<Client>("org.example.Client")
                                              .method(OneWay<>{"hold", {}}, &Client::hold)
                                              .method(OneWay<>{"push", {}}, &Client::push),
                                          client_);
        auto held = std::make_shared<int>();
        invalidationHandler_ = held;
        connection_->setInvalidationHandler([events = events_, held] { events->add(invalidated); });
        connection_->resume();
        connection_
            ->remoteObjectProxyWithErrorHandler(
                [events = events_](const Error& error) { events->add("failed: " + error.name); })
            .send(ask, [](bool) {});
        ASSERT_TRUE(waitUntil([&] { return !object_.client.isEmpty(); }));
    }

    [[nodiscard]] QDBusPendingCall call(const QString& interface, const QString& member) const {
        return service_.asyncCall(
            QDBusMessage::createMethodCall(object_.client, QStringLiteral("/client"), interface, member));
    }

    [[nodiscard]] QDBusPendingCall callClient(const QString& member) const {
        return call(QStringLiteral("org.example.Client"), member);
    }

    tests::PrivateBus bus_;
    QDBusConnection service_;
    Service object_;
    std::shared_ptr<Client> client_ = std::make_shared<Client>();
    std::shared_ptr<Events> events_ = std::make_shared<Events>();
    std::shared_ptr<Connection> connection_;
    std::weak_ptr<int> invalidationHandler_;
};

TEST_F(ConnectionTest, TakesNoCallThatWasOnItsWayWhenItWasInvalidated) {
    const auto hold = callClient(QStringLiteral("hold"));
    ASSERT_TRUE(waitUntil([&] { return client_->held.load(); }));
    connection_->invalidate();
    const auto push = callClient(QStringLiteral("push"));
    // The bus has passed the call on when it answers the next one.
    ASSERT_TRUE(service_.interface()->isServiceRegistered(object_.client));
    client_->release();

    // The bus connection closes after the last call has been dealt with; the bus tells the caller.
    ASSERT_TRUE(waitUntil([&] { return push.isFinished(); }));
    EXPECT_EQ(push.error().type(), QDBusError::NoReply);
    EXPECT_FALSE(client_->pushed);
    EXPECT_THAT(events_->all(), ElementsAre(failed, invalidated));
}

TEST_F(ConnectionTest, FailsAnUnansweredMessageButIsNotInvalidatedWhenTheLastReferenceGoes) {
    connection_.reset();
    ASSERT_TRUE(waitUntil([&] { return invalidationHandler_.expired() && !events_->all().empty(); }));
    EXPECT_THAT(events_->all(), ElementsAre(failed));
}

} // namespace quorvale::platform::connection
