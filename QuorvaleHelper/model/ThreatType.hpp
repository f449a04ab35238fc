#pragma once

#include "platform/json/Coding.hpp"
#include "platform/json/DecodingError.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>

namespace quorvale::model {

/// The threat categories. Their raw values are part of the agent's data: no case may move. `None` is a category like
/// any other, not the lack of one.
enum class ThreatType : std::uint8_t {
    None,
    Suspect,
    Advertising,
    Profiling,
    BadNetwork,
    Forensics,
    CloudStorage,
    DarkWeb,
    Geofence,
    Blocked,
    Execution,
    Persistence,
    BrowserClean,
    BadProtocol,
    CryptoJacking,
    Phishing,
    PowerShell,
    DenyList,
    Facebook,
    FakeNews,
    AppStore,
    BotNet,
    Process,
    SystemClean,
    Audio,
    Video,
    NetworkAccess,
    TikTok,
    Homograph,
    Activity,
};

/// All threat types in the order of their raw values.
inline constexpr auto allCases = [] {
    std::array<ThreatType, static_cast<std::size_t>(ThreatType::Activity) + 1> cases{};
    for (std::uint8_t value = 0; auto& type : cases) {
        type = static_cast<ThreatType>(value++);
    }
    return cases;
}();

constexpr std::int64_t rawValue(ThreatType type) {
    return static_cast<std::int64_t>(type);
}

constexpr std::optional<ThreatType> threatTypeOfRawValue(std::int64_t rawValue) {
    if (static_cast<std::uint64_t>(rawValue) >= allCases.size()) {
        return std::nullopt;
    }
    return static_cast<ThreatType>(rawValue);
}

} // namespace quorvale::model

namespace quorvale::platform::json {

/// The raw value as a bare JSON number.
template <>
struct Coding<model::ThreatType> {
    static std::expected<model::ThreatType, DecodingError> decode(const Decoder& decoder);
    static void encode(model::ThreatType type, Encoder& encoder);
};

} // namespace quorvale::platform::json
