#include "model/Restrictions.hpp"

#include "platform/json/JSONDecoder.hpp"
#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace quorvale::model {

using platform::json::JSONDecoder;
using platform::json::JSONEncoder;

static_assert([] {
    using Keys = Restrictions::CodingKeys;
    using platform::json::keyOfStringValue;
    return keyOfStringValue<Keys>("denyLock") == Keys::denyLock && !keyOfStringValue<Keys>("DenyLock") &&
           !platform::json::intValue(Keys::denyLock) && !platform::json::keyOfIntValue<Keys>(3);
}());

TEST(RestrictionsTest, AreReadFromTheirObjectAndWrittenAsIt) {
    const auto restrictions = JSONDecoder{}.decode<Restrictions>(
        R"({"extra":1,"denyLock":false,"allowLock":true,"geographyLock":false,"training":true})");
    ASSERT_TRUE(restrictions);
    EXPECT_EQ(JSONEncoder{}.encode(*restrictions),
              R"({"training":true,"geographyLock":false,"allowLock":true,"denyLock":false})");
}

TEST(RestrictionsTest, AreReplacedAndReadAsOneValue) {
    std::optional<Restrictions> known;
    for (int switches = 0; switches < 16; ++switches) {
        const auto flags =
            std::to_array({(switches & 1) != 0, (switches & 2) != 0, (switches & 4) != 0, switches >= 8});
        const Restrictions written(flags[0], flags[1], flags[2], flags[3]);
        known = JSONDecoder{}.decode<Restrictions>(JSONEncoder{}.encode(written)).value();
        EXPECT_EQ(std::to_array({known->training, known->geographyLock, known->allowLock, known->denyLock}), flags);
    }
}

} // namespace quorvale::model
