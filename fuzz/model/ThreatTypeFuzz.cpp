#include "model/ThreatType.hpp"
#include "platform/json/JSONEncoder.hpp"
#include "support/decoding.hpp"

using namespace quorvale;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto type = fuzz::decode<model::ThreatType>(fuzz::textOf(data, size))) {
        const auto text = platform::json::JSONEncoder{}.encode(*type);
        const auto again = fuzz::decode<model::ThreatType>(text);
        fuzz::check(again && *again == *type && model::rawValue(*type) < 30);
    }
    return 0;
}
