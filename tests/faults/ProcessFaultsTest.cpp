#include "faults/FaultsTest.hpp"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <filesystem>
#include <sys/resource.h>
#include <utility>

namespace quorvale::tests {

namespace {

using ProcessFaultsTest = FaultsTest;

/// The number that the next descriptor of the process gets.
rlim_t nextDescriptor(pid_t process) {
    rlim_t number = 0;
    while (std::filesystem::is_symlink(
        std::filesystem::symlink_status("/proc/" + std::to_string(process) + "/fd/" + std::to_string(number)))) {
        ++number;
    }
    return number;
}

rlim_t limitDescriptors(pid_t process, rlim_t count) {
    rlimit limit{};
    EXPECT_EQ(::prlimit(process, RLIMIT_NOFILE, nullptr, &limit), 0);
    const auto previous = std::exchange(limit.rlim_cur, count);
    EXPECT_EQ(::prlimit(process, RLIMIT_NOFILE, &limit, nullptr), 0);
    return previous;
}

} // namespace

TEST_F(ProcessFaultsTest, ConnectsAgainOnceThereAreDescriptors) {
    const AgentProcess agent(systemBus_, {"--state", active});
    HelperProcess helper(environment_);
    ASSERT_TRUE(helper.logs(launched));
    const auto process = helper.process().id();
    // Which of the descriptors that a connection takes is not to be had makes no difference.
    for (rlim_t spare = 0; spare < 6; ++spare) {
        SCOPED_TRACE(spare);
        const auto previous = limitDescriptors(process, nextDescriptor(process) + spare);
        const auto before = helper.log().size();
        helper.notify(restart);
        ASSERT_TRUE(waitUntil([&] {
            return std::ranges::any_of(logSince(helper, before), [](const auto& line) {
                return line == notConnected || line == noState || line == stateKnown;
            });
        }));
        limitDescriptors(process, previous);
        EXPECT_TRUE(helper.icon());
    }
    const auto before = helper.log().size();
    helper.notify(restart);
    EXPECT_TRUE(helper.logs(stateKnown, before));
    EXPECT_TRUE(helper.shows("Protected"));
    end(helper);
}

TEST_F(ProcessFaultsTest, RunsWhatIsQueuedWhenTheClockIsSetBack) {
    const QTemporaryDir folder;
    const auto clock = folder.filePath(QStringLiteral("clock"));
    const auto set = [&](const char* offset) {
        QFile file(clock);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(offset);
    };
    set("+0");
    const AgentProcess agent(systemBus_, {"--state", active});
    HelperProcess helper(environment_, {},
                         {"env", "LD_PRELOAD=/usr/$LIB/faketime/libfaketimeMT.so.1", "FAKETIME_NO_CACHE=1",
                          "DONT_FAKE_MONOTONIC=1", "FAKETIME_DONT_FAKE_MONOTONIC=1",
                          "FAKETIME_TIMESTAMP_FILE=" + clock.toStdString()});
    ASSERT_TRUE(helper.logs(launched));
    helper.notify(restart);
    ASSERT_TRUE(helper.logs("info Helper XPC: Connection resumed"));
    set("-2d");
    EXPECT_TRUE(helper.logs(stateKnown));
    EXPECT_TRUE(helper.shows("Protected"));
    end(helper);
    const auto& lines = helper.process().lines();
    EXPECT_LT(lines.back(), lines.front()) << "the clock was not set back";
}

} // namespace quorvale::tests
