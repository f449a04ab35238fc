#include "platform/connection/Connection.hpp"
#include "support/BusPeer.hpp"
#include "support/Load.hpp"
#include "support/PrivateBus.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <semaphore>
#include <string>
#include <vector>

namespace quorvale::platform::connection {

namespace {

constexpr OneWay<> registration{"register", {}};

struct Client {
    void push() { ++pushes; }

    std::atomic<int> pushes = 0;
    std::atomic<int> interruptions = 0;
};

} // namespace

TEST(OwnerChangeTest, TakesTheFirstCallOfAnOwnerThatComesWhileTheConnectionResumes) {
    constexpr int changes = 20'000;
    constexpr int atOnce = 20;
    const tests::PrivateBus bus;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);

    std::unique_ptr<tests::BusPeer> agents[2];
    std::counting_semaphore<> answered(0);
    std::atomic<int> refused = 0;
    // Whoever is called hands the name over, and the next owner calls back with the message after the one by which it
    // gets the name.
    for (auto& agent : agents) {
        auto& next = agents[&agent == &agents[0] ? 1 : 0];
        agent = std::make_unique<tests::BusPeer>(bus.address(), [&](tests::BusPeer& /*self*/, sd_bus_message* call) {
            next->post([&, client = std::string(sd_bus_message_get_sender(call)),
                        name = std::string(sd_bus_message_get_destination(call))] {
                next->own(name);
                next->call(
                    {client, "/client", "org.example.Client", "push"},
                    [&](std::string_view error) {
                        refused += error.empty() ? 0 : 1;
                        answered.release();
                    },
                    "");
            });
        });
    }
    const auto nameOf = [](int lane) { return "org.example.Service" + std::to_string(lane); };
    agents[0]->run([&] {
        for (int lane = 0; lane < atOnce; ++lane) {
            agents[0]->own(nameOf(lane));
        }
    });

    const auto client = std::make_shared<Client>();
    const tests::Load load;
    for (int change = 0; change < changes; change += atOnce) {
        std::vector<std::shared_ptr<Connection>> connections;
        for (int lane = 0; lane < atOnce; ++lane) {
            const auto& connection =
                connections.emplace_back(Connection::toService({nameOf(lane), "/service", "/client"}));
            ASSERT_TRUE(connection);
            connection->setRemoteObjectInterface({"org.example.Service", {describe(registration)}});
            connection->setExportedInterface(
                ExportedInterface<Client>("org.example.Client").method(OneWay<>{"push", {}}, &Client::push), client);
            connection->setInterruptionHandler([client] { ++client->interruptions; });
            connection->resume();
            connection->remoteObjectProxyWithErrorHandler([](const Error&) {}).send(registration);
        }
        for (int lane = 0; lane < atOnce; ++lane) {
            ASSERT_TRUE(answered.try_acquire_for(std::chrono::seconds(20)));
        }
    }
    EXPECT_EQ(refused, 0) << "of " << changes << " calls of a new owner";
    EXPECT_EQ(client->pushes, changes);
    EXPECT_EQ(client->interruptions, changes);
}

} // namespace quorvale::platform::connection
