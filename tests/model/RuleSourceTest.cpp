#include "model/RuleSource.hpp"

#include "platform/json/CodingKeys.hpp"
#include "platform/json/JSONDecoder.hpp"

#include <gtest/gtest.h>

namespace quorvale::model {

using platform::json::Coding;
using platform::json::Decoder;
using platform::json::DecodingError;
using platform::json::JSONDecoder;
using platform::json::keyOfIntValue;
using platform::json::keyOfStringValue;

namespace {

/// A record with a source in it, for the coding paths.
struct Rule {
    enum class CodingKeys : std::uint8_t { source };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) { return std::to_array<std::string_view>({"source"}); }

    RuleSource source;

    static std::expected<Rule, DecodingError> decode(const Decoder& decoder) {
        return decoder.record<Rule, RuleSource>();
    }
};

} // namespace

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
        EXPECT_EQ(JSONDecoder{}.decode<RuleSource>(text), source) << text;
    }
}

TEST(RuleSourceTest, RefusesAnythingButOneKeyWithAnObject) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"source":{}})", "type mismatch (RuleSource) at source: Invalid number of keys found, expected one."},
        {R"({"source":{"localSetting":{},"managedSetting":{}}})",
         "type mismatch (RuleSource) at source: Invalid number of keys found, expected one."},
        {R"({"source":{"LocalSetting":{}}})",
         "type mismatch (RuleSource) at source: Invalid number of keys found, expected one."},
        {R"({"source":{"localSetting":true}})",
         "type mismatch (object) at source.localSetting: Expected object but found a boolean."},
        {R"({"source":{"defaultItem":null}})",
         "type mismatch (object) at source.defaultItem: Expected object but found null."},
        {R"({"source":{"managedSetting":[{}]}})",
         "type mismatch (object) at source.managedSetting: Expected object but found an array."},
        {R"({"source":"localSetting"})", "type mismatch (object) at source: Expected object but found a string."},
        {R"({"source":null})", "value not found (object) at source: Expected object but found null."},
    };
    for (const auto& [text, description] : cases) {
        const auto rule = JSONDecoder{}.decode<Rule>(text);
        ASSERT_FALSE(rule) << text;
        EXPECT_EQ(rule.error().description(), description) << text;
    }
    EXPECT_EQ(JSONDecoder{}.decode<RuleSource>("null").error().kind, DecodingError::Kind::TypeMismatch);
}

TEST(RuleSourceTest, HasKeysOfExactTextsForItsCasesAndNoneInsideThem) {
    using Keys = Coding<RuleSource>;
    using CodingKeys = Keys::CodingKeys;
    EXPECT_EQ(stringValue(CodingKeys::managedSetting), "managedSetting");
    EXPECT_EQ(keyOfStringValue<CodingKeys>("localSetting"), CodingKeys::localSetting);
    for (const auto* text : {"", "localsetting", "localSettin", "localSettings", " localSetting"}) {
        EXPECT_EQ(keyOfStringValue<CodingKeys>(text), std::nullopt) << text;
    }
    EXPECT_EQ(intValue(CodingKeys::defaultItem), std::nullopt);
    EXPECT_EQ(keyOfIntValue<CodingKeys>(0), std::nullopt);
    for (const auto* text : {"", "defaultItem"}) {
        EXPECT_EQ(keyOfStringValue<Keys::DefaultItemCodingKeys>(text), std::nullopt);
        EXPECT_EQ(keyOfStringValue<Keys::LocalSettingCodingKeys>(text), std::nullopt);
        EXPECT_EQ(keyOfStringValue<Keys::ManagedSettingCodingKeys>(text), std::nullopt);
    }
}

} // namespace quorvale::model
