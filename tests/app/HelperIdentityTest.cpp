#include "app/HelperIdentity.hpp"

#include "app/StartUp.hpp"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace quorvale::app {

namespace {

class HelperIdentityTest : public testing::Test {
protected:
    platform::bundle::Bundle bundle(const std::string& members) {
        const std::filesystem::path path(directory_.path().toStdString());
        std::filesystem::create_directories(path / "Contents");
        std::ofstream(path / "Contents/Info.plist") << R"(<plist version="1.0"><dict>)" << members << "</dict></plist>";
        return platform::bundle::Bundle(path);
    }

    QTemporaryDir directory_;
};

} // namespace

TEST_F(HelperIdentityTest, DerivesTheSubsystemsByPlainConcatenation) {
    const auto names = LogSubsystems::of(bundle("<key>CFBundleIdentifier</key><string>x.y.helper</string>"));
    EXPECT_EQ(names.own, "x.y.helper");
    EXPECT_EQ(names.filter, "x.y.helper.filter");
    EXPECT_EQ(names.helper, "x.y.helper.helper");
    EXPECT_EQ(LogSubsystems::of(bundle("")).filter, "com.quorvale.QuorvaleHelper.filter");
}

TEST_F(HelperIdentityTest, ShowsAWarningSignForWhatTheBundleDoesNotSay) {
    EXPECT_EQ(versionLine(bundle("<key>CFBundleShortVersionString</key><string>2.1.0</string>"
                                 "<key>CFBundleVersion</key><string>57</string>")),
              "2.1.0 (57)");
    EXPECT_EQ(versionLine(bundle("<key>CFBundleShortVersionString</key><string>2.1.0</string>"
                                 "<key>CFBundleVersion</key><integer>57</integer>")),
              "2.1.0 (\xE2\x9A\xA0\xEF\xB8\x8F)");
    EXPECT_EQ(versionLine(platform::bundle::Bundle("/nowhere")), "⚠️ (⚠️)");
}

} // namespace quorvale::app
