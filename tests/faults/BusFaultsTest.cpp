#include "faults/FaultsTest.hpp"

#include <algorithm>

namespace quorvale::tests {

namespace {

using BusFaultsTest = RunningFaultsTest;

} // namespace

TEST_F(BusFaultsTest, ConnectsOnceTheSystemBusIsBack) {
    systemBus_.stop();
    helper_.notify(restart);
    ASSERT_TRUE(helper_.logs(notConnected));
    ASSERT_TRUE(helper_.logs(told));
    EXPECT_TRUE(helper_.shows("Unprotected"));

    // Absent at first, then lost while connected.
    for (const std::ptrdiff_t losses : {1, 2}) {
        systemBus_.start();
        const AgentProcess agent(systemBus_, {"--state", active});
        helper_.notify(restart);
        ASSERT_TRUE(waitUntil([&] { return std::ranges::count(helper_.log(), stateKnown) == losses; }));
        EXPECT_TRUE(helper_.shows("Protected"));
        systemBus_.stop();
        ASSERT_TRUE(waitUntil([&] { return std::ranges::count(helper_.log(), invalidated) == losses; }));
        EXPECT_TRUE(helper_.shows("Protected"));
    }
    EXPECT_THAT(helper_.log(), testing::Each(testing::Not(testing::StartsWith("error"))));
}

TEST_F(BusFaultsTest, IsThereForTheUserWhileTheSystemBusStandsStill) {
    const AgentProcess agent(systemBus_, {"--state", active});
    systemBus_.stall();
    helper_.notify(restart);
    ASSERT_TRUE(helper_.logs(told));
    EXPECT_TRUE(helper_.shows("Unprotected"));
    EXPECT_EQ(RawPeerProcess(sessionBus_)
                  .obey("call com.quorvale.QuorvaleHelper /com/quorvale/QuorvaleHelper org.freedesktop.Application "
                        "Activate a{sv} 0"),
              "ok")
        << "the window does not open";
    EXPECT_TRUE(helper_.icon());
    systemBus_.goOn();
    EXPECT_TRUE(helper_.logs(stateKnown));

    const auto before = helper_.log().size();
    systemBus_.stall();
    helper_.notify(restart);
    ASSERT_TRUE(helper_.logs(told, before));
}

} // namespace quorvale::tests
