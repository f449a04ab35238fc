#include "app/AppState.hpp"

#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace quorvale::app {

using Kind = platform::json::DecodingError::Kind;

TEST(AppStateTest, DecodesEveryCombinationOfFlagsInAnyMemberOrder) {
    for (unsigned bits = 0; bits < 8; ++bits) {
        const AppState state{.running = (bits & 1U) != 0, .restart = (bits & 2U) != 0, .terminate = (bits & 4U) != 0};
        const auto flag = [](bool value) { return value ? "true" : "false"; };
        const auto text = std::string(R"({"terminate":)") + flag(state.terminate) + R"(,"extra":[1],"running":)" +
                          flag(state.running) + R"(,"restart":)" + flag(state.restart) + '}';
        EXPECT_EQ(decodeAppState(text), state) << text;
        EXPECT_EQ(decodeAppState(platform::json::JSONEncoder{}.encode(state)), state);
    }
}

TEST(AppStateTest, EncodesItsMembersInDeclarationOrder) {
    EXPECT_EQ(platform::json::JSONEncoder{}.encode(AppState{.running = true, .restart = false, .terminate = true}),
              R"({"running":true,"restart":false,"terminate":true})");
}

TEST(AppStateTest, RequiresEachFlagAsABoolean) {
    struct Case {
        const char* text;
        Kind kind;
        const char* subject;
    };

    const Case cases[] = {
        {"{}", Kind::KeyNotFound, "running"},
        {R"({"running":true,"terminate":true})", Kind::KeyNotFound, "restart"},
        {R"({"running":true,"restart":true})", Kind::KeyNotFound, "terminate"},
        {R"({"Running":true,"restart":true,"terminate":true})", Kind::KeyNotFound, "running"},
        {R"({"running":true,"restart":null,"terminate":true})", Kind::ValueNotFound, "Bool"},
        {R"({"running":1,"restart":true,"terminate":true})", Kind::TypeMismatch, "Bool"},
        {R"([true,true,true])", Kind::TypeMismatch, "object"},
        {"running", Kind::DataCorrupted, ""},
    };
    for (const auto& [text, kind, subject] : cases) {
        const auto state = decodeAppState(text);
        ASSERT_FALSE(state) << text;
        EXPECT_EQ(state.error().kind, kind) << text;
        EXPECT_EQ(state.error().subject, subject) << text;
    }
}

} // namespace quorvale::app
