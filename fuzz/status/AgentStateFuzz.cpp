#include "platform/json/JSONEncoder.hpp"
#include "status/AgentState.hpp"
#include "support/decoding.hpp"

using namespace quorvale;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto state = fuzz::decode<status::AgentState>(fuzz::textOf(data, size))) {
        const auto text = platform::json::JSONEncoder{}.encode(*state);
        const auto again = fuzz::decode<status::AgentState>(text);
        fuzz::check(again && again->active == state->active);
    }
    return 0;
}
