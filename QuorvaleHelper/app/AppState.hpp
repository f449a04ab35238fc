#pragma once

#include "platform/json/Decoder.hpp"
#include "platform/json/DecodingError.hpp"
#include "platform/json/Encoder.hpp"

#include <array>
#include <cstdint>
#include <expected>
#include <string_view>

namespace quorvale::app {

/// What the updater wants of the helper, a JSON object: {"running":true,"restart":false,"terminate":false}.
struct AppState {
    enum class CodingKeys : std::uint8_t { running, restart, terminate };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"running", "restart", "terminate"});
    }

    constexpr AppState(bool isRunning, bool needsRestart, bool hasToTerminate)
        : running(isRunning), restart(needsRestart), terminate(hasToTerminate) {}

    const bool running;   ///< the protection status to show
    const bool restart;   ///< whether the agent link is to be connected anew
    const bool terminate; ///< whether the helper is to quit

    bool operator==(const AppState&) const = default;

    static std::expected<AppState, platform::json::DecodingError> decode(const platform::json::Decoder& decoder);
    void encode(platform::json::Encoder& encoder) const;
};

/// An app state that came as JSON text. Any thread.
std::expected<AppState, platform::json::DecodingError> decodeAppState(std::string_view text);

} // namespace quorvale::app
