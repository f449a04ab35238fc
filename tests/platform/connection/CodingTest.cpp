#include "platform/connection/Connection.hpp"
#include "support/BusPeer.hpp"
#include "support/PrivateBus.hpp"
#include "support/blockUntil.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
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

} // namespace

TEST(CodingTest, CarriesEveryPropertyListValueThereAndBack) {
    const tests::PrivateBus bus;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
    // Hands the dictionary that it gets back to its caller, as it came over the bus.
    tests::BusPeer service(bus.address(), [&](tests::BusPeer& self, sd_bus_message* call) {
        const std::string signature = sd_bus_message_get_signature(call, 1);
        self.passOn(call, {sd_bus_message_get_sender(call), "/client", "org.example.Client", "take"});
        self.answer(call, "s", signature.c_str());
    });
    service.run([&] { service.own("org.example.Service"); });

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
    std::atomic<bool> failed = false;
    std::atomic<bool> replied = false;
    connection->remoteObjectProxyWithErrorHandler([&](const Error&) { failed = true; })
        .send(storeIt, [&](const std::string& signature) { replied = signature == "a{sv}"; }, values);

    EXPECT_TRUE(tests::blockUntil([&] { return replied && sink->done; }));
    EXPECT_EQ(sink->taken, values);
    EXPECT_FALSE(failed);
}

} // namespace quorvale::platform::connection
