#include "model/AgentDefaults.hpp"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <set>

namespace quorvale::model {

using platform::defaults::UserDefaults;

TEST(AgentDefaultsTest, HasAKeyForEachOfItsValuesInTheGroupsSuite) {
    const QTemporaryDir folder;
    const auto suite = UserDefaults::open(AgentDefaults::suiteName, folder.path().toStdString());
    ASSERT_TRUE(suite) << suite.error();
    const AgentDefaults defaults(*suite);

    const std::set<std::string> keys{defaults.AllowRulesKey,       defaults.DenyRulesKey,
                                     defaults.GeoRulesKey,         defaults.AppSettingsKey,
                                     defaults.lastUpdatedRulesKey, defaults.restrictionSettingskey};
    EXPECT_EQ(keys.size(), 6U);
    for (const auto& key : keys) {
        EXPECT_TRUE(defaults.groupDefaults->setValue(key, UserDefaults::Value{true})) << key;
    }
}

} // namespace quorvale::model
