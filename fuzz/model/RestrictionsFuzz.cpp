#include "model/Restrictions.hpp"
#include "platform/json/JSONEncoder.hpp"
#include "support/decoding.hpp"

using namespace quorvale;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto restrictions = fuzz::decode<model::Restrictions>(fuzz::textOf(data, size))) {
        const auto text = platform::json::JSONEncoder{}.encode(*restrictions);
        const auto again = fuzz::decode<model::Restrictions>(text);
        fuzz::check(again && platform::json::JSONEncoder{}.encode(*again) == text);
    }
    return 0;
}
