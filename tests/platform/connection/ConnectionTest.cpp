#include "platform/connection/Connection.hpp"

#include "support/BusPeer.hpp"
#include "support/PrivateBus.hpp"
#include "support/blockUntil.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace quorvale::platform::connection {

namespace {

using testing::ElementsAre;
using tests::blockUntil;
using tests::BusPeer;

constexpr auto serviceName = "org.example.Service";
constexpr auto disconnected = "failed: org.freedesktop.DBus.Error.Disconnected";
constexpr auto invalidated = "invalidated";
constexpr Request<bool> ask{"ask", {}};
constexpr OneWay<> tell{"tell", {}};

/// What happened on the connection's queue or on the service's, in order.
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
    ConnectionTest() { setenv("DBUS_SYSTEM_BUS_ADDRESS", bus_.address().c_str(), 1); }

    ~ConnectionTest() override {
        client_->release();
        connection_.reset();
        // Nothing of the connection is left then that could still tell this object something.
        EXPECT_TRUE(blockUntil([&] { return client_.use_count() == 1 && events_.use_count() == 1; }));
    }

    /// Connects with a message that is not answered.
    void SetUp() override {
        service_ = std::make_unique<BusPeer>(bus_.address(), [this](BusPeer& /*self*/, sd_bus_message* call) {
            name_ = sd_bus_message_get_sender(call);
            received_->add(sd_bus_message_get_member(call));
            if (refusesNext_.exchange(false)) {
                sd_bus_reply_method_errorf(call, SD_BUS_ERROR_FAILED, "Told in vain.");
            }
        });
        service_->run([this] { service_->own(serviceName); });
        connectTo(serviceName);
        service().send(ask, [](bool) {});
        ASSERT_TRUE(blockUntil([&] { return received_->all().size() == 1; }));
    }

    void connectTo(const char* name) {
        connection_ = Connection::toService({name, "/service", "/client"});
        ASSERT_TRUE(connection_);
        connection_->setRemoteObjectInterface({serviceName, {describe(ask), describe(tell)}});
        connection_->setExportedInterface(ExportedInterface<Client>("org.example.Client")
                                              .method(OneWay<>{"hold", {}}, &Client::hold)
                                              .method(OneWay<>{"push", {}}, &Client::push),
                                          client_);
        connection_->setInvalidationHandler([events = events_] { events->add(invalidated); });
        connection_->resume();
    }

    [[nodiscard]] Proxy service() const {
        return connection_->remoteObjectProxyWithErrorHandler(
            [events = events_](const Error& error) { events->add("failed: " + error.name); });
    }

    /// The bus has passed the call on when this returns.
    void callClient(const char* method, const BusPeer::Outcome& outcome) {
        service_->run([&, outcome] { service_->call({name_, "/client", "org.example.Client", method}, outcome, ""); });
    }

    tests::PrivateBus bus_;
    std::shared_ptr<Events> received_ = std::make_shared<Events>();
    std::string name_;
    std::atomic<bool> refusesNext_ = false;
    std::unique_ptr<BusPeer> service_;
    std::shared_ptr<Client> client_ = std::make_shared<Client>();
    std::shared_ptr<Events> events_ = std::make_shared<Events>();
    std::shared_ptr<Connection> connection_;
};

TEST_F(ConnectionTest, TakesNoCallThatWasOnItsWayWhenItWasInvalidated) {
    // Of no account, since the bus has passed it on.
    service().send(tell);
    service().send(ask, [](bool) {});
    ASSERT_TRUE(blockUntil([&] { return received_->all().size() == 3; }));
    callClient("hold", [](std::string_view) {});
    ASSERT_TRUE(blockUntil([&] { return client_->held.load(); }));
    connection_->invalidate();
    Events answers;
    callClient("push", [&](std::string_view error) { answers.add(std::string(error)); });
    client_->release();

    // The bus connection closes after the last call has been dealt with; the bus tells the caller.
    ASSERT_TRUE(blockUntil([&] { return !answers.all().empty(); }));
    EXPECT_THAT(answers.all(), ElementsAre("org.freedesktop.DBus.Error.NoReply"));
    EXPECT_FALSE(client_->pushed);
    ASSERT_TRUE(blockUntil([&] { return events_->all().size() >= 3; }));
    EXPECT_THAT(events_->all(), ElementsAre(disconnected, disconnected, invalidated));
}

TEST_F(ConnectionTest, FailsAnUnansweredMessageButIsNotInvalidatedWhenTheLastReferenceGoes) {
    const auto threads = [] { return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/task")); };
    const auto before = threads();
    connection_.reset();
    ASSERT_TRUE(blockUntil([&] { return events_.use_count() == 1; }));
    EXPECT_THAT(events_->all(), ElementsAre(disconnected));
    EXPECT_TRUE(blockUntil([&] { return threads() < before; }));
}

TEST_F(ConnectionTest, FailsAOneWayMessageThatWasNotDeliveredOrIsNotKnownToBe) {
    // Delivered: what the service says to it, and whatever becomes of the service afterwards, is of no account.
    refusesNext_ = true;
    service().send(tell);
    service().send(tell);
    ASSERT_TRUE(blockUntil([&] { return received_->all().size() == 3; }));
    service_.reset();
    ASSERT_TRUE(blockUntil([&] { return events_->all().size() == 1; }));
    EXPECT_THAT(events_->all(), ElementsAre("failed: org.freedesktop.DBus.Error.NoReply")) << "the request";

    service().send(tell);
    ASSERT_TRUE(blockUntil([&] { return events_->all().size() == 2; }));
    EXPECT_EQ(events_->all().back(), "failed: org.freedesktop.DBus.Error.ServiceUnknown");

    bus_.stall();
    service().send(tell);
    connection_->invalidate();
    ASSERT_TRUE(blockUntil([&] { return events_->all().size() == 4; }));
    bus_.goOn();
    EXPECT_THAT(events_->all(), ElementsAre(testing::_, testing::_, disconnected, invalidated));
}

TEST_F(ConnectionTest, FailsAOneWayMessageThatTheBusKeptForAServiceThatDoesNotStart) {
    connectTo(tests::PrivateBus::unstartableName);
    service().send(tell);
    ASSERT_TRUE(blockUntil([&] { return events_->all().size() == 3; }));
    EXPECT_THAT(events_->all(), ElementsAre(disconnected, testing::StartsWith("failed: "), invalidated));
}

TEST_F(ConnectionTest, FailsNoOneWayMessageThatTheBusKeptForAServiceThatStarts) {
    connectTo(tests::PrivateBus::startableName);
    service().send(tell);
    ASSERT_TRUE(blockUntil([&] { return bus_.hasStartedAService(); }));
    service_->run([this] { service_->own(tests::PrivateBus::startableName); });
    ASSERT_TRUE(blockUntil([&] { return received_->all().size() == 2; }));
    EXPECT_EQ(received_->all().back(), "tell");
    // Back and forth twice, for what the connection and the bus then have to say to each other.
    callClient("push", [](std::string_view) {});
    ASSERT_TRUE(blockUntil([&] { return client_->pushed.load(); }));
    service().send(ask, [](bool) {});
    ASSERT_TRUE(blockUntil([&] { return received_->all().size() == 3; }));
    callClient("hold", [](std::string_view) {});
    ASSERT_TRUE(blockUntil([&] { return client_->held.load(); }));
    connection_->invalidate();
    client_->release();
    ASSERT_TRUE(blockUntil([&] { return events_->all().size() >= 3; }));
    EXPECT_THAT(events_->all(), ElementsAre(disconnected, disconnected, invalidated)) << "the two requests alone";
}

TEST_F(ConnectionTest, TakesTheCallsThatTheBusHadPassedOnBeforeItEnded) {
    callClient("hold", [](std::string_view) {});
    ASSERT_TRUE(blockUntil([&] { return client_->held.load(); }));
    callClient("push", [](std::string_view) {});
    bus_.stop();
    client_->release();
    ASSERT_TRUE(blockUntil([&] { return events_->all().size() == 2; }));
    EXPECT_TRUE(client_->pushed);
    EXPECT_THAT(events_->all(), ElementsAre(disconnected, invalidated));
}

} // namespace quorvale::platform::connection
