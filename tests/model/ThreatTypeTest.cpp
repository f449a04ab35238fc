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
        const auto type = JSONDecoder{}.decode<ThreatType>(std::to_string(value));
        ASSERT_FALSE(type) << value;
        EXPECT_EQ(type.error().kind, platform::json::DecodingError::Kind::DataCorrupted);
        EXPECT_THAT(type.error().description(), testing::HasSubstr(std::to_string(value)));
    }
    EXPECT_FALSE(JSONDecoder{}.decode<ThreatType>(R"("7")"));
}

} // namespace quorvale::model
