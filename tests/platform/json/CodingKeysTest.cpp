#include "platform/json/CodingKeys.hpp"

#include <gtest/gtest.h>

#include <array>

namespace quorvale::platform::json {

namespace {

struct Record {
    enum class CodingKeys : std::uint8_t { first, second };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"first", "second"});
    }

    enum class NoKeys : std::uint8_t {};

    friend constexpr std::array<std::string_view, 0> codingKeyNames(NoKeys /*keys*/) { return {}; }
};

using Keys = Record::CodingKeys;

} // namespace

TEST(CodingKeysTest, ConvertToTheirNamesAndOnlyFromTheirExactNames) {
    EXPECT_EQ(stringValue(Keys::second), "second");
    EXPECT_EQ(keyOfStringValue<Keys>("first"), Keys::first);
    EXPECT_EQ(keyOfStringValue<Keys>("second"), Keys::second);
    for (const auto* other : {"", "Second", "secon", "seconds", " second"}) {
        EXPECT_EQ(keyOfStringValue<Keys>(other), std::nullopt) << other;
    }
    EXPECT_EQ(keyOfStringValue<Record::NoKeys>("first"), std::nullopt);
    EXPECT_EQ(keyOfStringValue<Record::NoKeys>(""), std::nullopt);
}

TEST(CodingKeysTest, HaveNoIntegerForm) {
    EXPECT_EQ(intValue(Keys::first), std::nullopt);
    EXPECT_EQ(keyOfIntValue<Keys>(0), std::nullopt);
    EXPECT_EQ(keyOfIntValue<Record::NoKeys>(0), std::nullopt);
}

} // namespace quorvale::platform::json
