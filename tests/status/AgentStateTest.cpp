#include "status/AgentState.hpp"

#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

namespace quorvale::status {

TEST(AgentStateTest, YieldsTheActiveFlagOfTheTextThatItIsWrittenAs) {
    for (const auto active : {true, false}) {
        EXPECT_EQ(decodeAgentState(platform::json::JSONEncoder{}.encode(AgentState{.active = active})), active);
    }
    EXPECT_EQ(decodeAgentState(R"({"other":1,"active":true})"), true);
}

} // namespace quorvale::status
