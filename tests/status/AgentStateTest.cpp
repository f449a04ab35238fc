#include "status/AgentState.hpp"

#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace quorvale::status {

using Kind = platform::json::DecodingError::Kind;

TEST(AgentStateTest, YieldsTheActiveFlagOfTheText) {
    EXPECT_EQ(decodeAgentState(R"({"active":true})"), true);
    EXPECT_EQ(decodeAgentState(R"({"active":false,"other":1})"), false);
}

TEST(AgentStateTest, RefusesTextsWithoutABooleanThere) {
    const std::pair<const char*, Kind> cases[] = {
        {"{}", Kind::KeyNotFound},
        {R"({"Active":true})", Kind::KeyNotFound},
        {R"({"active":null})", Kind::ValueNotFound},
        {R"({"active":1})", Kind::TypeMismatch},
        {R"({"active":"true"})", Kind::TypeMismatch},
        {"[true]", Kind::TypeMismatch},
        {"true", Kind::TypeMismatch},
        {"active", Kind::DataCorrupted},
        {"", Kind::DataCorrupted},
    };
    for (const auto& [text, kind] : cases) {
        const auto active = decodeAgentState(text);
        ASSERT_FALSE(active) << text;
        EXPECT_EQ(active.error().kind, kind) << text;
    }
}

TEST(AgentStateTest, EncodesToTheObjectThatItDecodesFrom) {
    EXPECT_EQ(platform::json::JSONEncoder{}.encode(AgentState{.active = true}), R"({"active":true})");
    EXPECT_EQ(platform::json::JSONEncoder{}.encode(AgentState{.active = false}), R"({"active":false})");
}

} // namespace quorvale::status
