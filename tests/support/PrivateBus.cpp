#include "support/PrivateBus.hpp"

#include <QFile>
#include <gtest/gtest.h>

#include <fstream>

namespace quorvale::tests {

PrivateBus::PrivateBus() : PrivateBus(Policy{}) {}

PrivateBus::PrivateBus(const Policy& policy) {
    std::ofstream configuration(path("bus.conf"));
    configuration << "<busconfig>\n"
                  << "  <listen>" << address() << "</listen>\n"
                  << "  <auth>EXTERNAL</auth>\n"
                  << "  <policy context=\"default\">\n"
                  << "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
                  << "    <allow eavesdrop=\"true\"/>\n"
                  << "    <allow own=\"*\"/>\n";
    if (!policy.unownableName.empty()) {
        configuration << "    <deny own=\"" << policy.unownableName << "\"/>\n";
    }
    configuration << "  </policy>\n"
                  << "</busconfig>\n";
    configuration.close();
    restart();
}

std::string PrivateBus::address() const {
    return "unix:path=" + path("bus");
}

void PrivateBus::stop() {
    daemon_.reset();
}

void PrivateBus::restart() {
    stop();
    QFile::remove(QString::fromStdString(path("bus")));
    daemon_ = std::make_unique<Process>(Process::Launch{
        .program = "dbus-daemon",
        .arguments = {"--nofork", "--print-address", "--config-file=" + path("bus.conf")},
        .environment = {},
    });
    // It prints its address once it listens there.
    EXPECT_TRUE(daemon_->waitForLine("unix:path=")) << "the message bus doesn't start";
}

std::string PrivateBus::path(const char* name) const {
    return directory_.filePath(QString::fromLatin1(name)).toStdString();
}

} // namespace quorvale::tests
