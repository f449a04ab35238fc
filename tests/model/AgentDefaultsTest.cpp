#include "model/AgentDefaults.hpp"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <set>

namespace quorvale::model {

using platform::defaults::UserDefaults;

TEST(AgentDefaultsTest, ChangesInPlaceAndAsAWhole) {
    const auto defaults = std::make_shared<AgentDefaults>(nullptr);
    const auto other = defaults;
    EXPECT_FALSE(defaults->restrictions);

    defaults->restrictions.emplace(false, false, false, false);
    defaults->domainBlackList.emplace_back("example.org");
    defaults->BlockedCountryCodes = {"NL", "DE"};
    for (const auto type : allCases) {
        defaults->appSettings[type] = type != ThreatType::None;
    }

    ASSERT_TRUE(other->restrictions);
    EXPECT_FALSE(other->restrictions->denyLock);
    EXPECT_EQ(other->domainBlackList, std::vector<std::string>{"example.org"});
    EXPECT_EQ(other->BlockedCountryCodes.back(), "DE");
    EXPECT_EQ(other->appSettings.size(), 30U);
    EXPECT_FALSE(other->appSettings.at(ThreatType::None));
    other->restrictions.reset();
    EXPECT_FALSE(defaults->restrictions);
}

TEST(AgentDefaultsTest, KeepsValuesUnderItsKeysInTheGroupsSuite) {
    const QTemporaryDir folder;
    const auto suite = UserDefaults::open(AgentDefaults::suiteName, folder.path().toStdString());
    ASSERT_TRUE(suite) << suite.error();
    const AgentDefaults defaults(*suite);

    const std::set<std::string> keys{defaults.AllowRulesKey,       defaults.DenyRulesKey,
                                     defaults.GeoRulesKey,         defaults.AppSettingsKey,
                                     defaults.lastUpdatedRulesKey, defaults.restrictionSettingskey};
    EXPECT_EQ(keys.size(), 6U);
    for (const auto& key : keys) {
        ASSERT_TRUE(defaults.groupDefaults->setValue(key, UserDefaults::Value{"value of " + key}));
    }
    const AgentDefaults reopened(*UserDefaults::open(AgentDefaults::suiteName, folder.path().toStdString()));
    for (const auto& key : keys) {
        EXPECT_EQ(reopened.groupDefaults->value(key), UserDefaults::Value{"value of " + key});
    }
}

} // namespace quorvale::model
