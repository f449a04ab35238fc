#include "status/AgentState.hpp"

#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace quorvale::status {

using Kind = platform::json::DecodingError::Kind;

TEST(AgentStateTest, YieldsTheActiveFlagOfTheTextThatItIsWrittenAs) {
    for (const auto active : {true, false}) {
        EXPECT_EQ(decodeAgentState(platform::json::JSONEncoder{}.encode(AgentState{.active = active})), active);
    }
    EXPECT_EQ(decodeAgentState(R"({"other":1,"active":true})"), true);
}

TEST(AgentStateTest, RefusesTextsWithoutABooleanThere) {
    const std::pair<const char*, Kind> cases[] = {
        {"{}", Kind::KeyNotFound},
        {R"({"active":null})", Kind::ValueNotFound},
        {R"({"active":1})", Kind::TypeMismatch},
        {"[true]", Kind::TypeMismatch},
        {"", Kind::DataCorrupted},
    };
    for (const auto& [text, kind] : cases) {
        const auto active = decodeAgentState(text);
        ASSERT_FALSE(active) << text;
        EXPECT_EQ(active.error().kind, kind) << text;
    }
}

} // namespace quorvale::status
