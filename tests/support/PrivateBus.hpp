#pragma once

#include "support/Process.hpp"

#include <QTemporaryDir>

#include <memory>
#include <string>

namespace quorvale::tests {

/// A message bus of the test's own: a dbus-daemon with a configuration written for it, on which anyone may do
/// anything but own `unownableName`. It stands in for the system bus or the session bus. A daemon that doesn't start
/// fails the test.
class PrivateBus {
public:
    explicit PrivateBus(const std::string& unownableName = {});

    /// For DBUS_SYSTEM_BUS_ADDRESS, DBUS_SESSION_BUS_ADDRESS and QDBusConnection::connectToBus(). It stays the same
    /// for the life of this object.
    [[nodiscard]] std::string address() const;

    /// Has the daemon do nothing from now on; its clients' connections stay.
    void freeze() const;

    /// Ends the daemon, whose clients lose their connections.
    void stop();

private:
    [[nodiscard]] std::string path(const char* name) const;

    QTemporaryDir directory_;
    std::unique_ptr<Process> daemon_;
};

} // namespace quorvale::tests
