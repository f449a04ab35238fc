#include "support/PrivateBus.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

namespace quorvale::tests {

PrivateBus::PrivateBus(const std::string& unownableName) {
    std::ofstream(path("bus.conf")) << "<busconfig><listen>" << address() << "</listen><auth>EXTERNAL</auth>"
                                    << R"(<policy context="default">)"
                                    << R"(<allow send_destination="*" eavesdrop="true"/>)"
                                    << R"(<allow eavesdrop="true"/><allow own="*"/><deny own=")" << unownableName
                                    << R"("/></policy></busconfig>)";
    daemon_ = std::make_unique<Process>(Process::Launch{
        .program = "dbus-daemon",
        .arguments = {"--nofork", "--print-address", "--config-file=" + path("bus.conf")},
        .environment = {},
    });
    // It prints its address once it listens there.
    EXPECT_TRUE(daemon_->waitForLine("unix:path=")) << "the message bus doesn't start";
}

std::string PrivateBus::address() const {
    return "unix:path=" + path("bus");
}

void PrivateBus::freeze() const {
    daemon_->signal(SIGSTOP);
}

void PrivateBus::stop() {
    daemon_.reset();
}

std::string PrivateBus::path(const char* name) const {
    return directory_.filePath(QString::fromLatin1(name)).toStdString();
}

} // namespace quorvale::tests
