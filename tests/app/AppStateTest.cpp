#include "app/AppState.hpp"

#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

namespace quorvale::app {

TEST(AppStateTest, EncodesItsMembersInDeclarationOrderAndDecodesThem) {
    const AppState state{.running = true, .restart = false, .terminate = true};
    const auto text = platform::json::JSONEncoder{}.encode(state);
    EXPECT_EQ(text, R"({"running":true,"restart":false,"terminate":true})");
    EXPECT_EQ(decodeAppState(text), state);
}

} // namespace quorvale::app
