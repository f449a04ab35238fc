#include "model/ThreatType.hpp"

#include "platform/json/JSONDecoder.hpp"
#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

namespace quorvale::model {

using platform::json::JSONDecoder;
using platform::json::JSONEncoder;
using Kind = platform::json::DecodingError::Kind;

TEST(ThreatTypeTest, NumbersItsCasesFromZeroToTwentyNine) {
    ASSERT_EQ(allCases.size(), 30U);
    for (std::int64_t index = 0; const auto type : allCases) {
        EXPECT_EQ(rawValue(type), index);
        EXPECT_EQ(threatTypeOfRawValue(index), type);
        EXPECT_EQ(JSONEncoder{}.encode(type), std::to_string(index));
        EXPECT_EQ(JSONDecoder{}.decode<ThreatType>(std::to_string(index)), type);
        ++index;
    }
    const std::pair<std::int64_t, ThreatType> landmarks[] = {
        {0, ThreatType::None},      {7, ThreatType::DarkWeb},    {9, ThreatType::Blocked},
        {15, ThreatType::Phishing}, {22, ThreatType::Process},   {24, ThreatType::Audio},
        {27, ThreatType::TikTok},   {28, ThreatType::Homograph}, {29, ThreatType::Activity},
    };
    for (const auto& [value, type] : landmarks) {
        EXPECT_EQ(rawValue(type), value);
    }
    for (const auto value : {std::int64_t{30}, std::int64_t{-1}, std::int64_t{256},
                             std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(threatTypeOfRawValue(value), std::nullopt) << value;
    }
}

TEST(ThreatTypeTest, RefusesWhatNamesNoCategory) {
    const std::pair<const char*, Kind> cases[] = {
        {"30", Kind::DataCorrupted},   {"-1", Kind::DataCorrupted},
        {"256", Kind::DataCorrupted},  {"7.5", Kind::DataCorrupted},
        {"\"7\"", Kind::TypeMismatch}, {"true", Kind::TypeMismatch},
        {"[7]", Kind::TypeMismatch},   {R"({"rawValue":7})", Kind::TypeMismatch},
        {"null", Kind::ValueNotFound},
    };
    for (const auto& [text, kind] : cases) {
        const auto type = JSONDecoder{}.decode<ThreatType>(text);
        ASSERT_FALSE(type) << text;
        EXPECT_EQ(type.error().kind, kind) << text;
    }
    EXPECT_EQ(JSONDecoder{}.decode<ThreatType>("-30").error().description(),
              "data corrupted at top level: No threat type has the raw value -30.");
}

} // namespace quorvale::model
