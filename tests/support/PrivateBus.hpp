#pragma once

#include "support/Process.hpp"

#include <QTemporaryDir>

#include <memory>
#include <string>

namespace quorvale::tests {

/// A message bus of the test's own: a dbus-daemon with a configuration written for it, on which anyone may do
/// anything. It stands in for the system bus or the session bus. A daemon that doesn't start fails the test.
class PrivateBus {
public:
    struct Policy {
        /// A name that nobody may own; none if empty.
        std::string unownableName;
    };

    PrivateBus();
    explicit PrivateBus(const Policy& policy);

    /// For DBUS_SYSTEM_BUS_ADDRESS, DBUS_SESSION_BUS_ADDRESS and QDBusConnection::connectToBus(). It stays the same
    /// for the life of this object.
    [[nodiscard]] std::string address() const;

    /// Ends the daemon, whose clients lose their connections.
    void stop();
    /// Starts a new daemon on the same address, after ending the one that runs.
    void restart();

private:
    [[nodiscard]] std::string path(const char* name) const;

    QTemporaryDir directory_;
    std::unique_ptr<Process> daemon_;
};

} // namespace quorvale::tests
