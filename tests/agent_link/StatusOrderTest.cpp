#include "agent_link/HelperXPC.hpp"
#include "support/BusPeer.hpp"
#include "support/Load.hpp"
#include "support/PrivateBus.hpp"
#include "support/RecordedLog.hpp"
#include "support/waitUntil.hpp"

#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <vector>

namespace quorvale::agent_link {

using namespace std::chrono_literals;

TEST(StatusOrderTest, AppliesAReplyAndThePushBehindItInTheOrderInWhichTheAgentSentThem) {
    constexpr std::size_t rounds = 20'000;
    const auto& service = HelperXPC::agentService();
    const tests::PrivateBus bus;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);

    tests::BusPeer agent(bus.address(), [&](tests::BusPeer& self, sd_bus_message* call) {
        if (sd_bus_message_is_method_call(call, nullptr, "agentState") > 0) {
            self.answer(call, "as", 1, R"({"active":false})");
            self.call({.destination = sd_bus_message_get_sender(call),
                       .path = service.clientObjectPath.c_str(),
                       .interface = "com.quorvale.ClientCommunication",
                       .name = "updateProtectionStatus"},
                      {}, "b", 1);
        }
    });
    agent.run([&] { agent.own(service.name); });

    const tests::RecordedLog log;
    platform::queue::MainQueue mainQueue;
    auto status = std::make_shared<status::StatusManager>(mainQueue);
    const auto link = std::make_shared<HelperXPC>(HelperXPC::Collaborators{
        .mainQueue = mainQueue,
        .logger = log.logger(),
        .makeConnection = [&] { return platform::connection::Connection::toService(service); },
        .sleep = [](std::chrono::seconds) {},
        .statusManager = [&] { return status; },
    });

    // Each round follows the one before at once; the request that goes with the connecting is the first.
    QEventLoop loop;
    std::vector<bool> valuesBefore;
    const auto observation = status->objectWillChange([&] {
        valuesBefore.push_back(status->status());
        if (valuesBefore.size() == 2 * rounds) {
            loop.quit();
        } else if (valuesBefore.size() % 2 == 0) {
            link->requestAgentState();
        }
    });
    const tests::Load load;
    link->connectToAgent();
    QTimer::singleShot(280s, &loop, &QEventLoop::quit);
    loop.exec();
    link->clientConnection()->invalidate();
    ASSERT_TRUE(tests::waitUntil([&] { return log.count("Helper XPC: Connection invalidated") == 1; }));

    ASSERT_EQ(valuesBefore.size(), 2 * rounds);
    valuesBefore.push_back(status->status());
    int wrong = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        wrong += valuesBefore[(2 * round) + 1] || !valuesBefore[(2 * round) + 2] ? 1 : 0;
    }
    EXPECT_EQ(wrong, 0) << "of " << rounds << " pushes overtook the reply before them";
}

} // namespace quorvale::agent_link
