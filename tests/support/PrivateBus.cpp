#include "support/PrivateBus.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvale::tests {

PrivateBus::PrivateBus(const std::string& unownableName) {
    auto pattern = (std::filesystem::temp_directory_path() / "quorvale-bus-XXXXXX").string();
    directory_ = mkdtemp(pattern.data());
    std::ofstream(directory_ / "bus.conf")
        << "<busconfig><listen>" << address() << "</listen><auth>EXTERNAL</auth>"
        << "<servicedir>" << directory_.string() << "</servicedir>"
        << R"(<policy context="default"><allow send_destination="*" eavesdrop="true"/>)"
        << R"(<allow eavesdrop="true"/><allow own="*"/><deny own=")" << unownableName << R"("/></policy></busconfig>)";
    std::ofstream(directory_ / "startable.service")
        << "[D-BUS Service]\nName=" << startableName
        << "\nExec=/usr/bin/setpriv --pdeathsig KILL /bin/sh -c \"dbus-send --type=method_call --bus=" << address()
        << " --dest=" << listenerName << " / org.example.Start.started && exec sleep infinity\"\n";
    std::ofstream(directory_ / "unstartable.service")
        << "[D-BUS Service]\nName=" << unstartableName << "\nExec=/bin/sh -c \"sleep 0.1; exit 1\"\n";
    start();
}

PrivateBus::~PrivateBus() {
    stop();
    std::filesystem::remove_all(directory_);
}

std::string PrivateBus::address() const {
    return "unix:path=" + (directory_ / "bus").string();
}

void PrivateBus::start() {
    auto configuration = "--config-file=" + (directory_ / "bus.conf").string();
    // The bus ends with the thread that started it, however that ends.
    std::array words{std::string("setpriv"),     std::string("--pdeathsig"), std::string("KILL"),
                     std::string("dbus-daemon"), std::string("--nofork"),    std::string("--print-address"),
                     std::move(configuration)};
    std::array<char*, words.size() + 1> arguments{};
    std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
    std::array<int, 2> output{};
    ASSERT_EQ(pipe2(output.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    EXPECT_EQ(posix_spawnp(&daemon_, arguments[0], &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    // It prints its address once it listens there.
    char first = 0;
    EXPECT_EQ(read(output[0], &first, 1), 1) << "the message bus doesn't start";
    close(output[0]);
}

void PrivateBus::stop() {
    if (daemon_ > 0) {
        kill(daemon_, SIGKILL);
        waitpid(daemon_, nullptr, 0);
        daemon_ = 0;
    }
}

void PrivateBus::stall() {
    kill(daemon_, SIGSTOP);
    waitpid(daemon_, nullptr, WUNTRACED);
}

void PrivateBus::goOn() {
    kill(daemon_, SIGCONT);
}

} // namespace quorvale::tests
