#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>

namespace quorvale::tests {

/// A message bus of the test's own: a dbus-daemon with a configuration written for it, on which anyone may do
/// anything but own `unownableName`. It stands in for the system bus or the session bus. A daemon that doesn't start
/// fails the test.
class PrivateBus {
public:
    explicit PrivateBus(const std::string& unownableName = {});

    /// The bus starts a process for it, and keeps messages until someone has taken the name. The process calls
    /// "started" of whoever is the listener.
    static constexpr auto startableName = "org.example.Startable";
    static constexpr auto listenerName = "org.example.Service";

    /// The bus starts a process for it, which ends soon without having taken the name.
    static constexpr auto unstartableName = "org.example.Unstartable";
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// For DBUS_SYSTEM_BUS_ADDRESS, DBUS_SESSION_BUS_ADDRESS and whoever connects. It stays the same for the life of
    /// this object.
    [[nodiscard]] std::string address() const;

    /// Ends the daemon, whose clients lose their connections.
    void stop();

    /// Starts the daemon again after `stop`.
    void start();

    /// Holds the daemon up: it reads and writes nothing until it may go on.
    void stall();
    void goOn();

private:
    std::filesystem::path directory_;
    pid_t daemon_ = 0;
};

} // namespace quorvale::tests
