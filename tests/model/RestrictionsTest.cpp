#include "model/Restrictions.hpp"

#include "platform/json/JSONDecoder.hpp"
#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

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
    std::optional<Restrictions> known;
    for (int on = 0; on < 4; ++on) {
        const auto flag = [on](int index) { return std::string(index == on ? "true" : "false"); };
        const auto training = R"("training":)" + flag(0);
        const auto rest = R"("geographyLock":)" + flag(1) + R"(,"allowLock":)" + flag(2) + R"(,"denyLock":)" + flag(3);
        known = JSONDecoder{}.decode<Restrictions>("{\"extra\":1," + rest + ',' + training + '}').value();
        EXPECT_EQ(std::to_array({known->training, known->geographyLock, known->allowLock, known->denyLock}),
                  std::to_array({on == 0, on == 1, on == 2, on == 3}));
        EXPECT_EQ(JSONEncoder{}.encode(*known), '{' + training + ',' + rest + '}');
    }
}

} // namespace quorvale::model
