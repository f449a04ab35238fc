#include "platform/connection/Connection.hpp"
#include "support/BusPeer.hpp"
#include "support/PrivateBus.hpp"
#include "support/Record.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvale::platform::connection {

namespace {

constexpr Request<std::string, Dictionary> storeIt{"store", {"values"}};

struct Sink {
    void take(Dictionary values) { taken.add(std::move(values)); }

    tests::Record<Dictionary> taken;
};

} // namespace

TEST(CodingTest, CarriesEveryPropertyListValueThereAndBack) {
    const tests::PrivateBus bus;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
    // Hands the dictionary that it gets back to its caller, as it came over the bus.
    int answers = 0;
    std::string client;
    tests::BusPeer service(bus.address(), [&](tests::BusPeer& self, sd_bus_message* call) {
        const std::string signature = sd_bus_message_get_signature(call, 1);
        client = sd_bus_message_get_sender(call);
        self.passOn(call, {client, "/client", nullptr, "take"});
        self.answer(call, answers++ == 0 ? "s" : "ss", signature.c_str(), "more");
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
    tests::Record<std::string> outcomes;
    const auto proxy = connection->remoteObjectProxyWithErrorHandler([&](const Error&) { outcomes.add("failed"); });
    const auto onReply = [&](const std::string& signature) { outcomes.add(signature); };
    proxy.send(storeIt, onReply, values);
    EXPECT_THAT(sink->taken.await(1), testing::ElementsAre(values));
    EXPECT_THAT(outcomes.await(1), testing::ElementsAre("a{sv}"));
    proxy.send(storeIt, onReply, {});
    EXPECT_THAT(outcomes.await(2), testing::ElementsAre("a{sv}", "failed")) << "there is more in the reply";

    tests::Record<std::string> errors;
    service.run([&] {
        const tests::BusPeer::Method take{client, "/client", nullptr, "take"};
        const auto note = [&](std::string_view error) { errors.add(std::string(error)); };
        service.call(take, note, "a{sv}", 2, "byte", "y", 7, "word", "u", 7);
        service.call(take, note, "a{sv}", 1, "too large", "t", UINT64_MAX);
        service.call(take, note, "a{sv}", 1, "no date", "(s)", "x");
    });
    EXPECT_THAT(errors.await(3),
                testing::UnorderedElementsAre("", SD_BUS_ERROR_INVALID_ARGS, SD_BUS_ERROR_INVALID_ARGS));
}

} // namespace quorvale::platform::connection
