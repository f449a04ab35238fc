#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace quorvale::platform::json {

struct EncodedRecord {
    enum class CodingKeys : std::uint8_t { flag, count, nested };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"flag", "count", "nested"});
    }

    enum class NoKeys : std::uint8_t {};

    friend constexpr std::array<std::string_view, 0> codingKeyNames(NoKeys /*keys*/) { return {}; }

    bool flag;
    std::int64_t count;

    void encode(Encoder& encoder) const {
        auto object = encoder.container<CodingKeys>();
        object.encode(flag, CodingKeys::flag);
        object.nestedContainer<NoKeys>(CodingKeys::nested);
        object.encode(count, CodingKeys::count);
    }
};

struct EncodedOuter {
    enum class CodingKeys : std::uint8_t { record };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) { return std::to_array<std::string_view>({"record"}); }

    void encode(Encoder& encoder) const {
        encoder.container<CodingKeys>().encode(EncodedRecord{.flag = false, .count = -2}, CodingKeys::record);
    }
};

TEST(JSONEncoderTest, WritesMembersInTheOrderOfTheCalls) {
    EXPECT_EQ(JSONEncoder{}.encode(EncodedRecord{.flag = true, .count = 1}), R"({"flag":true,"nested":{},"count":1})");
    EXPECT_EQ(JSONEncoder{}.encode(EncodedOuter{}), R"({"record":{"flag":false,"nested":{},"count":-2}})");
}

TEST(JSONEncoderTest, WritesSingleValuesAtTopLevel) {
    EXPECT_EQ(JSONEncoder{}.encode(true), "true");
    EXPECT_EQ(JSONEncoder{}.encode(std::int64_t{15}), "15");
    EXPECT_EQ(JSONEncoder{}.encode(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

} // namespace quorvale::platform::json
