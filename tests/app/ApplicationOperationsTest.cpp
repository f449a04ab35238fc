#include "app/ApplicationOperations.hpp"

#include "support/RecordedLog.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quorvale::app {

TEST(ApplicationOperationsTest, FindsTheMainApplicationFourLevelsAboveTheHelper) {
    const std::pair<const char*, std::optional<std::filesystem::path>> cases[] = {
        {"/opt/Quorvale.app/Contents/Library/LoginItems/QuorvaleHelper.app", "/opt/Quorvale.app"},
        {"/x/y/z/Helper.app", "/"},
        {"/y/z/Helper.app", ""},
        {"/z/Helper.app", std::nullopt},
        {"/", std::nullopt},
    };
    for (const auto& [helper, main] : cases) {
        EXPECT_EQ(mainApplicationPath(helper), main) << helper;
    }
}

TEST(ApplicationOperationsTest, SaysInOneLineThatItLiesInNoMainApplication) {
    const tests::RecordedLog log;
    std::vector<std::string> opened;
    const auto open = [&](const std::string& path) { opened.push_back(path); };
    openMainApplication("/main/1/2/3/Helper.app", open, log.logger());
    EXPECT_THAT(log.lines(), testing::IsEmpty());
    openMainApplication("/3/Helper.app", open, log.logger());
    EXPECT_THAT(opened, testing::ElementsAre("/main"));
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("error: Failed to open the main application: the helper is not inside it: "
                                     "/3/Helper.app"));
}

} // namespace quorvale::app
