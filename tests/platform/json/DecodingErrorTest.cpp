#include "platform/json/DecodingError.hpp"

#include <gtest/gtest.h>

namespace quorvale::platform::json {

TEST(DecodingErrorTest, DescribesItselfInOneLine) {
    using enum DecodingError::Kind;
    const std::pair<DecodingError, const char*> cases[] = {
        {{KeyNotFound, "active", {}, "Gone."}, "key not found (active) at top level: Gone."},
        {{ValueNotFound, "Bool", {"outer", "inner"}, "Null."}, "value not found (Bool) at outer.inner: Null."},
        {{TypeMismatch, "Int", {"count"}, "Text."}, "type mismatch (Int) at count: Text."},
        {{DataCorrupted, "", {}, "Not JSON."}, "data corrupted at top level: Not JSON."},
    };
    for (const auto& [error, description] : cases) {
        EXPECT_EQ(error.description(), description);
    }
}

TEST(DecodingErrorTest, EscapesWhatCouldBreakOrHideInALogLine) {
    const DecodingError error{
        DecodingError::Kind::DataCorrupted, {}, {"a\nb"}, "\x1b[2J \xE2\x80\xAE \xFF" + std::string(1, '\0')};

    EXPECT_EQ(error.description(), R"(data corrupted at a\x0ab: \x1b[2J \xe2\x80\xae \xff\x00)");
}

} // namespace quorvale::platform::json
