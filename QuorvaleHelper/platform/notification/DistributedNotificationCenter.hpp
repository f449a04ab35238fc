#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace quorvale::platform::notification {

/// A notification's object that is not one text: the D-Bus signature of what came instead.
struct ForeignObject {
    std::string signature;
};

/// What another process told everyone. Its sender is not known and must not matter.
struct Notification {
    std::variant<std::monostate, std::string, ForeignObject> object;
};

/// Delivers the notifications that other processes of the session broadcast by name. On the session bus each is a
/// signal of the interface `com.quorvale.DistributedNotification` whose member is the notification's name, from any
/// object path, with its object as the only argument, or none.
class DistributedNotificationCenter {
public:
    using Handler = std::function<void(const Notification&)>;

    /// The center of the process's session bus, never destroyed. Main thread.
    static DistributedNotificationCenter& defaultCenter();

    DistributedNotificationCenter();
    ~DistributedNotificationCenter();
    DistributedNotificationCenter(const DistributedNotificationCenter&) = delete;
    DistributedNotificationCenter& operator=(const DistributedNotificationCenter&) = delete;

    /// Has `handler` called on the main thread for each notification of that name, whoever sent it, for as long as the
    /// center lives, in the order in which they came and each in a turn of the event loop of its own: timers, signals
    /// and whatever else is due are served between two of them. `name` is a D-Bus member name.
    void addObserver(const std::string& name, Handler handler);

private:
    class Receiver;
    std::vector<std::unique_ptr<Receiver>> receivers_;
};

} // namespace quorvale::platform::notification
