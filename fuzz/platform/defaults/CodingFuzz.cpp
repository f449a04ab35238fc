#include "platform/defaults/Coding.hpp"
#include "support/decoding.hpp"

using namespace quorvale;
using namespace quorvale::platform::defaults;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto entries = decode(fuzz::textOf(data, size))) {
        const auto bytes = encode(*entries);
        // Not the entries themselves: a number may be none, which equals nothing.
        const auto again = bytes ? decode(*bytes) : std::nullopt;
        fuzz::check(again && encode(*again) == bytes);
    }
    return 0;
}
