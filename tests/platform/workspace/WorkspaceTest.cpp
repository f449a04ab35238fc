#include "platform/workspace/Workspace.hpp"

#include "support/waitUntil.hpp"

#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvale::platform::workspace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using tests::waitUntil;

class WorkspaceTest : public testing::Test {
protected:
    WorkspaceTest() { fs::create_directories(programs_); }

    void writeInformation(const std::string& executable) {
        std::ofstream(path_ / "Contents" / "Info.plist")
            << R"(<plist version="1.0"><dict><key>CFBundleExecutable</key><string>)" << executable
            << "</string></dict></plist>";
    }

    void writeProgram(const std::string& text) {
        std::ofstream(programs_ / "Program") << text;
        fs::permissions(programs_ / "Program", fs::perms::owner_all);
        writeInformation("Program");
    }

    QTemporaryDir directory_;
    fs::path path_ = fs::path(directory_.path().toStdString()) / "Some; app $(x).app";
    fs::path programs_ = path_ / "Contents" / "Linux";
};

TEST_F(WorkspaceTest, StartsTheProgramOnItsOwnAndDoesNotWaitForIt) {
    writeProgram(R"(#!/bin/sh
directory=$(dirname "$0")
{
    echo $$ $(cut -d ' ' -f 6 /proc/$$/stat)
    echo "$(pwd) $QUORVALE_TEST $(readlink /proc/$$/fd/0) $(readlink /proc/$$/fd/2) $#"
} > "$directory/unfinished"
mv "$directory/unfinished" "$directory/report"
read -r line < "$directory/end"
)");
    const auto end = programs_ / "end";
    ASSERT_EQ(mkfifo(end.c_str(), 0600), 0);
    const int endWriter = open(end.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(endWriter, 0);
    setenv("QUORVALE_TEST", "inherited", 1);

    const auto opened = Workspace{}.openApplication(path_.string());

    ASSERT_TRUE(opened) << opened.error();
    ASSERT_TRUE(waitUntil([this] { return fs::exists(programs_ / "report"); }));
    std::ifstream report(programs_ / "report");
    pid_t pid = 0;
    pid_t session = 0;
    std::string rest;
    std::getline(report >> pid >> session >> std::ws, rest);
    EXPECT_EQ(kill(pid, 0), 0);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left to be waited for";
    EXPECT_EQ(errno, ECHILD);
    EXPECT_NE(session, getsid(0));
    EXPECT_EQ(rest, fs::path(std::getenv("HOME")).string() + " inherited /dev/null /dev/null 0");
    EXPECT_EQ(write(endWriter, "\n", 1), 1);
    EXPECT_TRUE(waitUntil([pid] { return kill(pid, 0) != 0; }));
    close(endWriter);
}

TEST_F(WorkspaceTest, SaysWhatIsMissing) {
    const auto failure = [this] {
        const auto opened = Workspace{}.openApplication(path_.string());
        return opened ? std::string("opened") : opened.error();
    };
    EXPECT_EQ(failure(), "no application at " + path_.string());
    writeInformation("../Program");
    EXPECT_EQ(failure(), "no application at " + path_.string());
    writeInformation("Program");
    EXPECT_THAT(failure(), HasSubstr("Program: "));
    writeProgram("#!/bin/sh\n");
    fs::permissions(programs_ / "Program", fs::perms::owner_read);
    EXPECT_THAT(failure(), HasSubstr("Program: "));
    EXPECT_EQ(Workspace{}.openApplication("").error(), "no application at ");
}

} // namespace quorvale::platform::workspace
