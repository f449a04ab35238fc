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

TEST(ApplicationOperationsTest, SaysInOneLineWhatItCannotOpen) {
    const tests::RecordedLog log;
    std::vector<std::string> opened;
    const auto open = [&](const std::string& path) -> std::expected<void, std::string> {
        opened.push_back(path);
        return path == "/good" ? std::expected<void, std::string>() : std::unexpected("nothing there");
    };
    openMainApplication("/good/1/2/3/Helper.app", open, log.logger());
    EXPECT_THAT(log.lines(), testing::IsEmpty());
    openMainApplication("/bad/1/2/3/Helper.app", open, log.logger());
    openMainApplication("/2/3/Helper.app", open, log.logger());
    EXPECT_THAT(opened, testing::ElementsAre("/good", "/bad"));
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("error: Failed to open the main application: nothing there",
                                     "error: Failed to open the main application: the helper is not inside it: "
                                     "/2/3/Helper.app"));
}

} // namespace quorvale::app
