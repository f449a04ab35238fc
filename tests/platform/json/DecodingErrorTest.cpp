#include "platform/json/DecodingError.hpp"

#include <gtest/gtest.h>

namespace quorvale::platform::json {

TEST(DecodingErrorTest, EscapesWhatCouldBreakOrHideInALogLine) {
    const DecodingError error{
        DecodingError::Kind::DataCorrupted, {}, {"a\nb"}, "\x1b[2J \xE2\x80\xAE \xFF" + std::string(1, '\0')};

    EXPECT_EQ(error.description(), R"(data corrupted at a\x0ab: \x1b[2J \xe2\x80\xae \xff\x00)");
}

} // namespace quorvale::platform::json
