#include "model/RuleSource.hpp"

#include <ranges>
#include <utility>

namespace quorvale::platform::json {

using model::RuleSource;

std::expected<RuleSource, DecodingError> Coding<RuleSource>::decode(const Decoder& decoder) {
    const auto object = decoder.container<CodingKeys>();
    if (!object) {
        return std::unexpected(object.error());
    }
    auto keys = object->allKeys();
    if (std::ranges::distance(keys) != 1) {
        return std::unexpected(decoder.typeMismatch("RuleSource", "Invalid number of keys found, expected one."));
    }
    const auto decodeCase =
        [&object]<CodingKeySet Nested>(CodingKeys key, RuleSource source,
                                       Nested /*keys*/) -> std::expected<RuleSource, DecodingError> {
        auto contents = object->nestedContainer<Nested>(key);
        if (!contents) {
            return std::unexpected(std::move(contents.error()));
        }
        return source;
    };
    switch (const auto key = *keys.begin(); key) {
    case CodingKeys::defaultItem:
        return decodeCase(key, RuleSource::defaultItem, DefaultItemCodingKeys{});
    case CodingKeys::localSetting:
        return decodeCase(key, RuleSource::localSetting, LocalSettingCodingKeys{});
    case CodingKeys::managedSetting:
        break;
    }
    return decodeCase(CodingKeys::managedSetting, RuleSource::managedSetting, ManagedSettingCodingKeys{});
}

} // namespace quorvale::platform::json
