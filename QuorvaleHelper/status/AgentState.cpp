#include "status/AgentState.hpp"

#include "platform/json/JSONDecoder.hpp"

namespace quorvale::status {

using platform::json::DecodingError;

std::expected<AgentState, DecodingError> AgentState::decode(const platform::json::Decoder& decoder) {
    return decoder.record<AgentState, bool>();
}

void AgentState::encode(platform::json::Encoder& encoder) const {
    auto object = encoder.container<CodingKeys>();
    object.encode(active, CodingKeys::active);
}

std::expected<bool, DecodingError> decodeAgentState(std::string_view text) {
    const auto state = platform::json::JSONDecoder{}.decode<AgentState>(text);
    if (!state) {
        return std::unexpected(state.error());
    }
    return state->active;
}

} // namespace quorvale::status
