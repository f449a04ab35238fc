#include "model/Restrictions.hpp"

#include "platform/json/JSONDecoder.hpp"
#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
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

TEST(RestrictionsTest, AreReadFromTheirObjectWrittenAsItAndReplacedAsOneValue) {
    constexpr std::array texts{
        R"({"training":true,"geographyLock":false,"allowLock":false,"denyLock":false})",
        R"({"training":false,"geographyLock":true,"allowLock":false,"denyLock":false})",
        R"({"training":false,"geographyLock":false,"allowLock":true,"denyLock":false})",
        R"({"training":false,"geographyLock":false,"allowLock":false,"denyLock":true})",
    };
    std::optional<Restrictions> known;
    for (std::size_t on = 0; on < texts.size(); ++on) {
        known = JSONDecoder{}.decode<Restrictions>(texts.at(on)).value();
        EXPECT_EQ(std::to_array({known->training, known->geographyLock, known->allowLock, known->denyLock}),
                  std::to_array({on == 0, on == 1, on == 2, on == 3}));
        EXPECT_EQ(JSONEncoder{}.encode(*known), texts.at(on));
    }
}

} // namespace quorvale::model
