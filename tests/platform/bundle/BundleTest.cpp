#include "platform/bundle/Bundle.hpp"

#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace quorvale::platform::bundle {

namespace fs = std::filesystem;
using namespace std::string_literals;

/// A binary property list: "\u00FC" is "\u00E9", "n" is 57.
const auto binaryList =
    "bplist00\322\001\002\003\004a\000\374Qna\000\351\0209\010\015\020\022\025\000\000\000\000\000\000\001\001\000\000\000\000\000\000\000\005\000\000\000\000\000\000\000\000\000\000\000\000\000\000\000\027"s;

class BundleTest : public testing::Test {
protected:
    void write(const fs::path& file, const std::string& contents = "") {
        fs::create_directories((path_ / file).parent_path());
        std::ofstream(path_ / file) << contents;
    }

    void writeInformation(const std::string& entries) {
        write("Contents/Info.plist", R"(<plist version="1.0"><dict>)" + entries + "</dict></plist>");
    }

    QTemporaryDir directory_;
    fs::path path_ = fs::path(directory_.path().toStdString()) / "Some.app";
};

TEST_F(BundleTest, HasTheTextsOfItsDictionary) {
    writeInformation("<key>name</key><string>Tom &amp; J\xC3\xA9r\xC3\xB4me</string><key>empty</key><string/>"
                     "<key>number</key><integer>57</integer><key>yes</key><true/>"
                     "<key>inner</key><dict><key>deep</key><string>x</string></dict>");
    const Bundle bundle(path_);
    EXPECT_EQ(bundle.infoText("name"), "Tom & J\xC3\xA9r\xC3\xB4me");
    EXPECT_EQ(bundle.infoText("empty"), "");
    for (const auto* key : {"number", "yes", "inner", "deep", ""}) {
        EXPECT_EQ(bundle.infoText(key), std::nullopt) << key;
    }
    write("Contents/Info.plist", binaryList);
    EXPECT_EQ(Bundle(path_).infoText("\u00FC"), "\u00E9");
    EXPECT_EQ(Bundle(path_).infoText("n"), std::nullopt);
}

TEST_F(BundleTest, HasNoInformationWithoutAFileAndAnErrorWithABrokenOne) {
    EXPECT_EQ(Bundle(path_).bundleIdentifier(), std::nullopt);
    EXPECT_EQ(Bundle(path_).infoError(), std::nullopt);
    for (const auto& broken :
         {std::string(), std::string("no list"), std::string("<plist><dict><key>CFBundleIdentifier</key><string>b"),
          std::string("<plist><array><string>a</string></array></plist>"), binaryList.substr(0, 8),
          binaryList.substr(0, 40) + binaryList.substr(41)}) {
        write("Contents/Info.plist", broken);
        const Bundle bundle(path_);
        EXPECT_EQ(bundle.bundleIdentifier(), std::nullopt);
        EXPECT_THAT(bundle.infoError(), testing::Optional(testing::HasSubstr("Some.app/Contents/Info.plist: ")))
            << broken;
    }
    writeInformation("");
    EXPECT_EQ(Bundle(path_).infoError(), std::nullopt);
}

TEST_F(BundleTest, HasImagesByName) {
    EXPECT_EQ(Bundle(path_).resourcePath("Some"), (path_ / "Contents/Resources/Some.svg").string());
}

TEST_F(BundleTest, NamesItsProgram) {
    writeInformation("<key>CFBundleExecutable</key><string>Some Program</string>");
    EXPECT_EQ(Bundle(path_).executablePath(), (path_ / "Contents/Linux/Some Program").string());
    writeInformation("");
    EXPECT_EQ(Bundle(path_).executablePath(), std::nullopt);
}

TEST_F(BundleTest, IsFoundFromAProgramInItsLayoutAndIsTheDirectoryOfAProgramElsewhere) {
    writeInformation("<key>CFBundleIdentifier</key><string>a.b</string>");
    const auto found = Bundle::ofExecutable(path_ / "Contents/Linux/Some");
    EXPECT_EQ(found.bundlePath(), path_.string());
    EXPECT_EQ(found.bundleIdentifier(), "a.b");
    for (const auto& place : {path_ / "Contents", path_ / "Contents/Windows", path_ / "Contents/Linux/x",
                              fs::path("/usr/Contents/Linux"), fs::path("/")}) {
        const auto bundle = Bundle::ofExecutable(place / "Some");
        EXPECT_EQ(bundle.bundlePath(), place.string());
    }
    EXPECT_EQ(Bundle::main().bundlePath(), fs::read_symlink("/proc/self/exe").parent_path().string());
}

} // namespace quorvale::platform::bundle
