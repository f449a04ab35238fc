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

TEST(JSONEncoderTest, WritesMembersInTheOrderOfTheCalls) {
    EXPECT_EQ(JSONEncoder{}.encode(EncodedRecord{.flag = true, .count = std::numeric_limits<std::int64_t>::min()}),
              R"({"flag":true,"nested":{},"count":-9223372036854775808})");
}

} // namespace quorvale::platform::json
