#include "app/AppState.hpp"

#include "platform/json/JSONDecoder.hpp"

namespace quorvale::app {

using platform::json::DecodingError;

std::expected<AppState, DecodingError> AppState::decode(const platform::json::Decoder& decoder) {
    return decoder.record<AppState, bool, bool, bool>();
}

void AppState::encode(platform::json::Encoder& encoder) const {
    auto object = encoder.container<CodingKeys>();
    object.encode(running, CodingKeys::running);
    object.encode(restart, CodingKeys::restart);
    object.encode(terminate, CodingKeys::terminate);
}

std::expected<AppState, DecodingError> decodeAppState(std::string_view text) {
    return platform::json::JSONDecoder{}.decode<AppState>(text);
}

} // namespace quorvale::app
