#include "model/ThreatType.hpp"

#include "platform/json/JSONDecoder.hpp"
#include "platform/json/JSONEncoder.hpp"

#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <optional>
#include <string>

namespace quorvale::model {

using platform::json::JSONDecoder;
using platform::json::JSONEncoder;
using Kind = platform::json::DecodingError::Kind;

static_assert([] {
    using enum ThreatType;
    return allCases == std::array{None,         Suspect,     Advertising,   Profiling, BadNetwork, Forensics,
                                  CloudStorage, DarkWeb,     Geofence,      Blocked,   Execution,  Persistence,
                                  BrowserClean, BadProtocol, CryptoJacking, Phishing,  PowerShell, DenyList,
                                  Facebook,     FakeNews,    AppStore,      BotNet,    Process,    SystemClean,
                                  Audio,        Video,       NetworkAccess, TikTok,    Homograph,  Activity};
}());

TEST(ThreatTypeTest, NumbersItsCasesFromZeroToTwentyNine) {
    ASSERT_EQ(allCases.size(), 30U);
    for (std::int64_t index = 0; const auto type : allCases) {
        EXPECT_EQ(rawValue(type), index);
        EXPECT_EQ(threatTypeOfRawValue(index), type);
        EXPECT_EQ(JSONEncoder{}.encode(type), std::to_string(index));
        EXPECT_EQ(JSONDecoder{}.decode<ThreatType>(std::to_string(index)), type);
        ++index;
    }
    for (const auto value : {std::int64_t{30}, std::int64_t{-1}, std::int64_t{256},
                             std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(threatTypeOfRawValue(value), std::nullopt) << value;
    }
}

TEST(ThreatTypeTest, RefusesWhatNamesNoCategory) {
    const std::pair<const char*, Kind> cases[] = {
        {"30", Kind::DataCorrupted},
        {"-1", Kind::DataCorrupted},
        {"256", Kind::DataCorrupted},
        {"7.00000000000000000001", Kind::DataCorrupted},
        {"1e-400", Kind::DataCorrupted},
        {"\"7\"", Kind::TypeMismatch},
        {"true", Kind::TypeMismatch},
        {"[7]", Kind::TypeMismatch},
        {R"({"rawValue":7})", Kind::TypeMismatch},
        {"null", Kind::ValueNotFound},
    };
    for (const auto& [text, kind] : cases) {
        const auto type = JSONDecoder{}.decode<ThreatType>(text);
        ASSERT_FALSE(type) << text;
        EXPECT_EQ(type.error().kind, kind) << text;
    }
    for (const auto* number : {"-30", "9223372036854775808", "-1e30"}) {
        EXPECT_THAT(JSONDecoder{}.decode<ThreatType>(number).error().description(), testing::HasSubstr(number));
    }
}

} // namespace quorvale::model
