#include "model/Restrictions.hpp"

#include "platform/json/JSONDecoder.hpp"
#include "platform/json/JSONEncoder.hpp"

#include <gtest/gtest.h>

#include <array>

namespace quorvale::model {

using platform::json::JSONDecoder;
using platform::json::JSONEncoder;

TEST(RestrictionsTest, AreReadFromTheirObjectAndWrittenAsIt) {
    const auto restrictions = JSONDecoder{}.decode<Restrictions>(
        R"({"extra":1,"denyLock":false,"allowLock":true,"geographyLock":false,"training":true})");
    ASSERT_TRUE(restrictions);
    EXPECT_EQ(JSONEncoder{}.encode(*restrictions),
              R"({"training":true,"geographyLock":false,"allowLock":true,"denyLock":false})");
    for (int switches = 0; switches < 16; ++switches) {
        const Restrictions written{.training = (switches & 1) != 0,
                                   .geographyLock = (switches & 2) != 0,
                                   .allowLock = (switches & 4) != 0,
                                   .denyLock = (switches & 8) != 0};
        const auto read = JSONDecoder{}.decode<Restrictions>(JSONEncoder{}.encode(written));
        ASSERT_TRUE(read);
        EXPECT_EQ(std::to_array({read->training, read->geographyLock, read->allowLock, read->denyLock}),
                  std::to_array({written.training, written.geographyLock, written.allowLock, written.denyLock}));
    }
}

} // namespace quorvale::model
