#include "platform/bundle/PropertyList.hpp"
#include "support/decoding.hpp"

using namespace quorvale;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    platform::bundle::textEntriesOfPropertyList(fuzz::textOf(data, size));
    return 0;
}
