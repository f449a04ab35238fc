#include "support/AgentProcess.hpp"

#include <gtest/gtest.h>

namespace quorvale::tests {

TEST(AgentProcessTest, HasTheNameWhenItHasBeenMade) {
    const PrivateBus bus;
    AgentProcess agent(bus);
    agent.command("quit");
    EXPECT_EQ(agent.process().waitForExit(), (Process::Exit{.code = 0, .bySignal = false}));
}

} // namespace quorvale::tests
