#include "app/AppState.hpp"
#include "platform/json/JSONEncoder.hpp"
#include "support/decoding.hpp"

using namespace quorvale;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto state = fuzz::decode<app::AppState>(fuzz::textOf(data, size))) {
        const auto text = platform::json::JSONEncoder{}.encode(*state);
        const auto again = fuzz::decode<app::AppState>(text);
        fuzz::check(again && *again == *state);
    }
    return 0;
}
