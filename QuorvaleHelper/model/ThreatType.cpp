#include "model/ThreatType.hpp"

#include "platform/json/Decoder.hpp"
#include "platform/json/Encoder.hpp"

#include <string>

namespace quorvale::platform::json {

using model::ThreatType;

std::expected<ThreatType, DecodingError> Coding<ThreatType>::decode(const Decoder& decoder) {
    const auto value = decoder.integer();
    if (!value) {
        return std::unexpected(value.error());
    }
    const auto type = model::threatTypeOfRawValue(*value);
    if (!type) {
        return std::unexpected(
            decoder.dataCorrupted("No threat type has the raw value " + std::to_string(*value) + "."));
    }
    return *type;
}

void Coding<ThreatType>::encode(ThreatType type, Encoder& encoder) {
    encoder.integer(model::rawValue(type));
}

} // namespace quorvale::platform::json
