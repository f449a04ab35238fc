#include "model/RuleSource.hpp"
#include "support/decoding.hpp"

using namespace quorvale;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto source = fuzz::decode<model::RuleSource>(fuzz::textOf(data, size));
    fuzz::check(!source || *source <= model::RuleSource::managedSetting);
    return 0;
}
