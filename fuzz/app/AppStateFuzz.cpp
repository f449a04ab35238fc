#include "app/AppState.hpp"
#include "platform/json/JSONEncoder.hpp"
#include "support/decoding.hpp"

#include <string>

using namespace quorvale;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto given = fuzz::textOf(data, size);
    const auto state = fuzz::decode<app::AppState>(given);
    if (given.starts_with('{')) {
        // A number of any size that nobody reads hides no fault and makes none.
        const auto beside = fuzz::decode<app::AppState>(R"({"":1e400,)" + std::string(given.substr(1)));
        fuzz::check(beside.has_value() == state.has_value() && (!state || *beside == *state));
    }
    if (state) {
        const auto text = platform::json::JSONEncoder{}.encode(*state);
        const auto again = fuzz::decode<app::AppState>(text);
        fuzz::check(again && *again == *state);
    }
    return 0;
}
