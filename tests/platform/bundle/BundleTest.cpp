#include "platform/bundle/Bundle.hpp"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace quorvale::platform::bundle {

namespace fs = std::filesystem;

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

TEST_F(BundleTest, HasNoInformationWithoutAReadableFile) {
    EXPECT_EQ(Bundle(path_).bundleIdentifier(), std::nullopt);
    fs::create_directories(path_ / "Contents" / "Info.plist");
    EXPECT_EQ(Bundle(path_).bundleIdentifier(), std::nullopt);
    fs::remove(path_ / "Contents" / "Info.plist");
    ASSERT_EQ(mkfifo((path_ / "Contents" / "Info.plist").c_str(), 0600), 0);
    EXPECT_EQ(Bundle(path_).bundleIdentifier(), std::nullopt);
}

TEST_F(BundleTest, HasAnAbsolutePathWithoutASlashAtItsEnd) {
    EXPECT_EQ(Bundle(path_.string() + "//").bundlePath(), path_.string());
    EXPECT_EQ(Bundle(path_ / ".." / "Some.app" / "").bundlePath(), path_.string());
    EXPECT_EQ(Bundle("Some.app").bundlePath(), (fs::current_path() / "Some.app").string());
    EXPECT_EQ(Bundle("/").bundlePath(), "/");
}

TEST_F(BundleTest, FindsImagesByNameAndPrefersScalableOnes) {
    write("Contents/Resources/Both.png");
    write("Contents/Resources/Both.svg");
    write("Contents/Resources/Small.png");
    write("Contents/Outside.png");
    const Bundle bundle(path_);

    EXPECT_EQ(bundle.resourcePath("Both"), (path_ / "Contents/Resources/Both.svg").string());
    EXPECT_EQ(bundle.resourcePath("Small"), (path_ / "Contents/Resources/Small.png").string());
    for (const auto* name : {"Absent", "", "..", "../Outside", "Small.png"}) {
        EXPECT_EQ(bundle.resourcePath(name), std::nullopt) << name;
    }
}

TEST_F(BundleTest, NamesItsProgramOnlyInsideItself) {
    writeInformation("<key>CFBundleExecutable</key><string>Some Program</string>");
    EXPECT_EQ(Bundle(path_).executablePath(), (path_ / "Contents/Linux/Some Program").string());
    for (const auto* name : {"", ".", "..", "../../x", "/bin/sh", "a/b"}) {
        writeInformation(std::string("<key>CFBundleExecutable</key><string>") + name + "</string>");
        EXPECT_EQ(Bundle(path_).executablePath(), std::nullopt) << name;
    }
    writeInformation("");
    EXPECT_EQ(Bundle(path_).executablePath(), std::nullopt);
}

TEST_F(BundleTest, IsFoundFromAProgramInItsLayoutAndIsTheDirectoryOfAProgramElsewhere) {
    writeInformation("<key>CFBundleIdentifier</key><string>a.b</string>");
    const auto found = Bundle::ofExecutable(path_ / "Contents/Linux/Some");
    EXPECT_EQ(found.bundlePath(), path_.string());
    EXPECT_EQ(found.bundleIdentifier(), "a.b");
    for (const auto& place : {path_, path_ / "Contents", path_ / "Contents/Windows", path_ / "Contents/Linux/x",
                              fs::path("/usr/Contents/Linux"), fs::path("/")}) {
        const auto bundle = Bundle::ofExecutable(place / "Some");
        EXPECT_EQ(bundle.bundlePath(), place.string());
        EXPECT_EQ(bundle.bundleIdentifier(), std::nullopt) << place;
    }
    EXPECT_EQ(Bundle::main().bundlePath(), fs::read_symlink("/proc/self/exe").parent_path().string());
}

} // namespace quorvale::platform::bundle
