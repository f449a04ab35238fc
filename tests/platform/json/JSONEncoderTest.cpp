#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace quorvale::platform::json {

struct EncodedCount {
    std::int64_t count;

    void encode(Encoder& encoder) const { encoder.integer(count); }
};

struct EncodedRecord {
    enum class CodingKeys : std::uint8_t { flag, count };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"flag", "count"});
    }

    bool flag;
    EncodedCount count;

    void encode(Encoder& encoder) const {
        auto object = encoder.container<CodingKeys>();
        object.encode(count, CodingKeys::count);
        object.encode(flag, CodingKeys::flag);
    }
};

struct EncodedOuter {
    enum class CodingKeys : std::uint8_t { record };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) { return std::to_array<std::string_view>({"record"}); }

    void encode(Encoder& encoder) const {
        encoder.container<CodingKeys>().encode(EncodedRecord{.flag = false, .count = {-2}}, CodingKeys::record);
    }
};

TEST(JSONEncoderTest, WritesMembersInTheOrderOfTheCalls) {
    EXPECT_EQ(JSONEncoder{}.encode(EncodedRecord{.flag = true, .count = {1}}), R"({"count":1,"flag":true})");
    EXPECT_EQ(JSONEncoder{}.encode(EncodedOuter{}), R"({"record":{"count":-2,"flag":false}})");
}

TEST(JSONEncoderTest, WritesSingleValuesAtTopLevel) {
    EXPECT_EQ(JSONEncoder{}.encode(true), "true");
    EXPECT_EQ(JSONEncoder{}.encode(EncodedCount{15}), "15");
    EXPECT_EQ(JSONEncoder{}.encode(EncodedCount{std::numeric_limits<std::int64_t>::min()}), "-9223372036854775808");
}

} // namespace quorvale::platform::json
