#include "platform/connection/Connection.hpp"

#include "support/BusPeer.hpp"
#include "support/PrivateBus.hpp"
#include "support/Record.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <semaphore>
#include <string>
#include <vector>

namespace quorvale::platform::connection {

namespace {

using testing::_;
using testing::ElementsAre;
using tests::BusPeer;

constexpr auto serviceName = tests::PrivateBus::listenerName;
constexpr auto disconnected = "failed: org.freedesktop.DBus.Error.Disconnected";
constexpr auto invalidated = "invalidated";
constexpr Request<bool> ask{"ask", {}};
constexpr OneWay<> tell{"tell", {}};

using Record = tests::Record<std::string>;

struct Client {
    void hold() {
        calls.add("hold");
        released.acquire();
    }

    void push() { calls.add("push"); }

    Record calls;
    std::counting_semaphore<> released{0};
};

} // namespace

class ConnectionTest : public testing::Test {
protected:
    ConnectionTest() { setenv("DBUS_SYSTEM_BUS_ADDRESS", bus_.address().c_str(), 1); }

    ~ConnectionTest() override {
        client_->released.release();
        connection_.reset();
        EXPECT_EQ(ended_->await(connections_).size(), connections_);
        EXPECT_EQ(client_.use_count(), 1);
    }

    /// Connects with a message that is not answered.
    void SetUp() override {
        service_ = std::make_unique<BusPeer>(bus_.address(), [this](BusPeer& /*self*/, sd_bus_message* call) {
            name_ = sd_bus_message_get_sender(call);
            if (refusesNext_.exchange(false)) {
                sd_bus_reply_method_errorf(call, SD_BUS_ERROR_FAILED, "Told in vain.");
            }
            received_->add(sd_bus_message_get_member(call));
        });
        service_->run([this] { service_->own(serviceName); });
        connectTo(serviceName);
        service().send(ask, [](bool) {});
        received_->await(1);
    }

    void connectTo(const char* name) {
        connection_ = Connection::toService({name, "/service", "/client"});
        ASSERT_TRUE(connection_);
        ++connections_;
        connection_->setRemoteObjectInterface({serviceName, {describe(ask), describe(tell)}});
        connection_->setExportedInterface(ExportedInterface<Client>("org.example.Client")
                                              .method(OneWay<>{"hold", {}}, &Client::hold)
                                              .method(OneWay<>{"push", {}}, &Client::push),
                                          client_);
        connection_->setInvalidationHandler([events = events_] { events->add(invalidated); });
        connection_->resume();
    }

    [[nodiscard]] Proxy service() const {
        return connection_->remoteObjectProxyWithErrorHandler([events = events_, ended = ended_](const Error& error) {
            thread_local const std::shared_ptr<void> end(nullptr, [ended](void*) { ended->add("thread"); });
            events->add("failed: " + error.name);
        });
    }

    /// The bus has passed the call on when this returns.
    void callClient(const char* method, const BusPeer::Outcome& outcome) {
        service_->run([&, outcome] { service_->call({name_, "/client", "org.example.Client", method}, outcome, ""); });
    }

    tests::PrivateBus bus_;
    std::shared_ptr<Record> received_ = std::make_shared<Record>();
    std::string name_;
    std::atomic<bool> refusesNext_ = false;
    std::unique_ptr<BusPeer> service_;
    std::shared_ptr<Client> client_ = std::make_shared<Client>();
    std::shared_ptr<Record> events_ = std::make_shared<Record>();
    std::shared_ptr<Record> ended_ = std::make_shared<Record>(); ///< the connections' threads
    std::size_t connections_ = 0;
    std::shared_ptr<Connection> connection_;
};

TEST_F(ConnectionTest, TakesNoCallThatWasOnItsWayWhenItWasInvalidated) {
    // Of no account, since the bus has passed it on.
    service().send(tell);
    service().send(ask, [](bool) {});
    received_->await(3);
    callClient("hold", [](std::string_view) {});
    client_->calls.await(1);
    connection_->invalidate();
    Record answers;
    callClient("push", [&](std::string_view error) { answers.add(std::string(error)); });
    client_->released.release();

    // The bus connection closes after the last call has been dealt with; the bus tells the caller.
    EXPECT_THAT(answers.await(1), ElementsAre("org.freedesktop.DBus.Error.NoReply"));
    EXPECT_THAT(client_->calls.await(1), ElementsAre("hold"));
    EXPECT_THAT(events_->await(3), ElementsAre(disconnected, disconnected, invalidated));
}

TEST_F(ConnectionTest, FailsAnUnansweredMessageButIsNotInvalidatedWhenTheLastReferenceGoes) {
    connection_.reset();
    ended_->await(1);
    EXPECT_THAT(events_->await(1), ElementsAre(disconnected));
}

TEST_F(ConnectionTest, FailsAOneWayMessageThatWasNotDeliveredOrIsNotKnownToBe) {
    // Delivered: what the service says to it, and whatever becomes of the service afterwards, is of no account.
    refusesNext_ = true;
    service().send(tell);
    service().send(tell);
    received_->await(3);
    service_.reset();
    EXPECT_THAT(events_->await(1), ElementsAre("failed: org.freedesktop.DBus.Error.NoReply")) << "the request";

    service().send(tell);
    EXPECT_THAT(events_->await(2), ElementsAre(_, "failed: org.freedesktop.DBus.Error.ServiceUnknown"));

    bus_.stall();
    service().send(tell);
    connection_->invalidate();
    EXPECT_THAT(events_->await(4), ElementsAre(_, _, disconnected, invalidated));
    bus_.goOn();
}

TEST_F(ConnectionTest, FailsAOneWayMessageThatTheBusKeptForAServiceThatDoesNotStart) {
    connectTo(tests::PrivateBus::unstartableName);
    service().send(tell);
    EXPECT_THAT(events_->await(3), ElementsAre(disconnected, testing::StartsWith("failed: "), invalidated));
}

TEST_F(ConnectionTest, FailsNoOneWayMessageThatTheBusKeptForAServiceThatStarts) {
    connectTo(tests::PrivateBus::startableName);
    service().send(tell);
    received_->await(2);
    service_->run([this] { service_->own(tests::PrivateBus::startableName); });
    EXPECT_THAT(received_->await(3), ElementsAre("ask", "started", "tell"));
    // Back and forth twice, for what the connection and the bus then have to say to each other.
    callClient("push", [](std::string_view) {});
    client_->calls.await(1);
    service().send(ask, [](bool) {});
    received_->await(4);
    callClient("hold", [](std::string_view) {});
    client_->calls.await(2);
    connection_->invalidate();
    client_->released.release();
    EXPECT_THAT(events_->await(3), ElementsAre(disconnected, disconnected, invalidated)) << "the two requests alone";
}

TEST_F(ConnectionTest, TakesTheCallsThatTheBusHadPassedOnBeforeItEnded) {
    callClient("hold", [](std::string_view) {});
    client_->calls.await(1);
    callClient("push", [](std::string_view) {});
    bus_.stop();
    client_->released.release();
    EXPECT_THAT(events_->await(2), ElementsAre(disconnected, invalidated));
    EXPECT_THAT(client_->calls.await(2), ElementsAre("hold", "push"));
}

} // namespace quorvale::platform::connection
