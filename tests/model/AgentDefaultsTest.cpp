#include "model/AgentDefaults.hpp"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <set>

namespace quorvale::model {

using platform::defaults::UserDefaults;

TEST(AgentDefaultsTest, HasAKeyForEachOfItsValuesInTheGroupsSuite) {
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
    const AgentDefaults defaults(std::make_shared<UserDefaults>(AgentDefaults::suiteName));

    const std::set<std::string> keys{defaults.AllowRulesKey,       defaults.DenyRulesKey,
                                     defaults.GeoRulesKey,         defaults.AppSettingsKey,
                                     defaults.lastUpdatedRulesKey, defaults.restrictionSettingskey};
    EXPECT_EQ(keys.size(), 6U);
    for (const auto& key : keys) {
        EXPECT_TRUE(defaults.groupDefaults->setValue(key, UserDefaults::Value{true})) << key;
    }
    qunsetenv("XDG_CONFIG_HOME");
}

} // namespace quorvale::model
