#pragma once

#include "platform/json/Decoder.hpp"
#include "platform/json/DecodingError.hpp"
#include "platform/json/Encoder.hpp"

#include <array>
#include <cstdint>
#include <expected>
#include <string_view>

namespace quorvale::status {

/// The state that the agent reports of itself, a JSON object: {"active":true}.
struct AgentState {
    enum class CodingKeys : std::uint8_t { active };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) { return std::to_array<std::string_view>({"active"}); }

    constexpr explicit AgentState(bool isActive) : active(isActive) {}

    bool active;

    static std::expected<AgentState, platform::json::DecodingError> decode(const platform::json::Decoder& decoder);
    void encode(platform::json::Encoder& encoder) const;
};

/// The `active` flag of an agent state that came as JSON text. Any thread.
std::expected<bool, platform::json::DecodingError> decodeAgentState(std::string_view text);

} // namespace quorvale::status
