#include "model/RuleSource.hpp"

#include "platform/json/JSONDecoder.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace quorvale::model {

using platform::json::JSONDecoder;

static_assert(sizeof(RuleSource) == 1 && RuleSource{0} == RuleSource::defaultItem &&
              RuleSource{1} == RuleSource::localSetting && RuleSource{2} == RuleSource::managedSetting);

TEST(RuleSourceTest, IsTheCaseThatTheSingleRecognisedKeyNames) {
    const std::pair<const char*, RuleSource> cases[] = {
        {R"({"defaultItem":{}})", RuleSource::defaultItem},
        {R"({"localSetting":{}})", RuleSource::localSetting},
        {R"({"managedSetting":{"x":1,"localSetting":{}}})", RuleSource::managedSetting},
        {R"({"defaultItem":{},"note":"x"})", RuleSource::defaultItem},
        {R"({"LocalSetting":{},"managedSetting":{}})", RuleSource::managedSetting},
        {R"({"localSetting":{},"localSetting":true})", RuleSource::localSetting},
    };
    for (const auto& [text, source] : cases) {
        const auto decoded = JSONDecoder{}.decode<RuleSource>(text);
        ASSERT_EQ(decoded, source) << text;
        EXPECT_EQ(std::hash<RuleSource>()(*decoded), std::hash<RuleSource>()(source));
    }
    EXPECT_NE(RuleSource::defaultItem, RuleSource::localSetting);
}

TEST(RuleSourceTest, RefusesAnythingButOneKeyWithAnObject) {
    constexpr auto wrongCount = "type mismatch (RuleSource) at top level: Invalid number of keys found, expected one.";
    const std::pair<const char*, const char*> cases[] = {
        {"{}", wrongCount},
        {R"({"localSetting":{},"managedSetting":{}})", wrongCount},
        {R"({"localSetting":true,"managedSetting":null})", wrongCount},
        {R"({"LocalSetting":{}})", wrongCount},
        {R"({"localSetting":true})", "type mismatch (object) at localSetting: Expected object but found a boolean."},
        {R"({"defaultItem":null})", "type mismatch (object) at defaultItem: Expected object but found null."},
        {R"({"managedSetting":[{}]})", "type mismatch (object) at managedSetting: Expected object but found an array."},
        {R"("localSetting")", "type mismatch (object) at top level: Expected object but found a string."},
        {"null", "type mismatch (object) at top level: Expected object but found null."},
    };
    for (const auto& [text, description] : cases) {
        const auto source = JSONDecoder{}.decode<RuleSource>(text);
        ASSERT_FALSE(source) << text;
        EXPECT_EQ(source.error().description(), description) << text;
    }
}

} // namespace quorvale::model
