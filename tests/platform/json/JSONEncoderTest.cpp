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

TEST(JSONEncoderTest, WritesMembersInTheOrderOfTheCalls) {
    EXPECT_EQ(JSONEncoder{}.encode(EncodedRecord{.flag = true, .count = {std::numeric_limits<std::int64_t>::min()}}),
              R"({"count":-9223372036854775808,"flag":true})");
}

} // namespace quorvale::platform::json
