#include "faults/FaultsTest.hpp"

#include <QTemporaryDir>

#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quorvale::tests {

namespace {

using MachineFaultsTest = FaultsTest;

/// Runs `script`, a shell command with `argument` as its $0, where it may mount what nobody else sees, and then the
/// command that follows it.
std::vector<std::string> afterMounting(const std::string& script, const std::string& argument) {
    return {"unshare", "--map-current-user",      "--keep-caps", "--mount", "--", "sh",
            "-ec",     script + R"(; exec "$@")", argument};
}

/// Plain users may have no mounts of their own.
bool mayMount() {
    Process unshare(
        {.program = "unshare",
         .arguments = {"--map-current-user", "--keep-caps", "--mount", "--", "sh", "-c", "mount -t tmpfs none /run"}});
    return unshare.waitForExit() == Process::Exit{};
}

/// A journal that has stopped: its socket takes what fits in, and nobody reads it.
class StoppedJournal {
public:
    StoppedJournal() : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        directory_.filePath(QStringLiteral("socket")).toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

    ~StoppedJournal() { ::close(socket_); }

    StoppedJournal(const StoppedJournal&) = delete;
    StoppedJournal& operator=(const StoppedJournal&) = delete;

    /// What fitted in.
    [[nodiscard]] std::string taken() const {
        std::string fields;
        char entry[4096];
        for (ssize_t size = 0; (size = ::recv(socket_, entry, sizeof entry, MSG_DONTWAIT)) > 0;) {
            fields.append(entry, static_cast<std::size_t>(size));
        }
        return fields;
    }

    [[nodiscard]] std::string folder() const { return directory_.path().toStdString(); }

private:
    QTemporaryDir directory_;
    int socket_;
};

/// A helper that has more to log than is taken from it, and its end.
void outlivesItsLog(HelperProcess& helper, const PrivateBus& sessionBus) {
    ASSERT_TRUE(waitUntil([&] { return helper.icon().has_value(); }));
    RawPeerProcess updater(sessionBus);
    updater.obey(std::vector<std::string>(1000, "signal - /x com.quorvale.DistributedNotification QuorvaleHelper s"));
    helper.notify(R"({"running":true,"restart":false,"terminate":false})");
    EXPECT_TRUE(helper.shows("Protected"));
    FaultsTest::end(helper);
}

} // namespace

TEST_F(MachineFaultsTest, RunsOnWhenTheJournalStops) {
    if (!mayMount()) {
        GTEST_SKIP() << "no right to mount";
    }
    const StoppedJournal journal;
    HelperProcess helper(
        environment_, {},
        afterMounting(R"(mount -t tmpfs none /run; mkdir /run/systemd; ln -s "$0" /run/systemd/journal)",
                      journal.folder()));
    outlivesItsLog(helper, sessionBus_);
    EXPECT_THAT(helper.log(), testing::IsEmpty());
    EXPECT_THAT(journal.taken(), testing::HasSubstr("\nMESSAGE=Quorvale Helper Started...\n"));
}

TEST_F(MachineFaultsTest, RunsOnWhenNobodyReadsItsErrors) {
    HelperProcess helper(
        environment_, {},
        {"sh", "-c", R"(pipe=$(mktemp -u); mkfifo "$pipe"; exec 2<>"$pipe"; rm "$pipe"; exec "$0" "$@")"});
    outlivesItsLog(helper, sessionBus_);
}

TEST_F(MachineFaultsTest, RunsWithoutStandardDescriptors) {
    AgentProcess agent(systemBus_, {"--state", active});
    // Which of them are missing decides what would take the place of standard error.
    for (const std::string missing : {"<&-", "2>&-", ">&- 2>&-", "<&- 2>&-", "<&- >&- 2>&-"}) {
        SCOPED_TRACE(missing);
        HelperProcess helper(environment_, {}, {"sh", "-c", R"(exec "$0" "$@" )" + missing});
        ASSERT_TRUE(waitUntil([&] { return helper.icon().has_value(); }));
        helper.notify(restart);
        ASSERT_TRUE(agent.waitForEvent("replied "));
        EXPECT_TRUE(helper.shows("Protected"));
        const auto descriptors = "/proc/" + std::to_string(helper.process().id()) + "/fd/";
        for (const auto* const standard : {"0", "1", "2"}) {
            const auto file = std::filesystem::read_symlink(descriptors + standard).string();
            EXPECT_TRUE(file == "/dev/null" || file.starts_with("pipe:")) << standard << " is " << file;
        }
        end(helper);
    }
}

TEST_F(MachineFaultsTest, NeedsNoRoomAtHome) {
    if (!mayMount()) {
        GTEST_SKIP() << "no right to mount";
    }
    for (const std::string home : {R"(mount --bind "$0" "$0"; mount -o remount,bind,ro "$0")",
                                   R"(mount -t tmpfs -o size=4k none "$0"; printf %4096s >"$0/full")"}) {
        SCOPED_TRACE(home);
        const QTemporaryDir folder;
        auto environment = environment_;
        for (const auto* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
            environment[variable] = folder.path().toStdString();
        }
        const AgentProcess agent(systemBus_, {"--state", active});
        HelperProcess helper(environment, {},
                             afterMounting(home + R"(; ! { echo x >"$0/more"; } 2>&-)", folder.path().toStdString()));
        ASSERT_TRUE(helper.logs(launched));
        helper.notify(restart);
        ASSERT_TRUE(helper.logs(stateKnown));
        EXPECT_TRUE(helper.shows("Protected"));
        EXPECT_THAT(helper.log(), testing::Each(testing::StartsWith("info")));
        end(helper);
    }
}

} // namespace quorvale::tests
