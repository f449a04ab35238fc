#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace quorvale::tests {

/// A process on a private bus, as far as the bus can tell: a bus connection with a thread of its own. It ends as a
/// killed process does, with whatever it had not read yet.
class BusPeer {
public:
    using Work = std::move_only_function<void()>;
    using CallHandler = std::function<void(BusPeer& self, sd_bus_message* call)>;
    /// Gets the name of the error that a call was answered with; an empty one if it succeeded.
    using Outcome = std::function<void(std::string_view error)>;

    /// Every call from elsewhere goes to `onCall`, which answers it now, later or never. A bus that isn't there fails
    /// the test.
    explicit BusPeer(const std::string& address, CallHandler onCall = {});
    ~BusPeer();
    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;

    /// The unique name.
    [[nodiscard]] const std::string& name() const { return name_; }

    /// Has `work` run on the peer's thread, one piece after the other. Any thread.
    void post(Work work);

    /// The same, and waits until it has run and the bus has dealt with everything that the peer sent. Not on the
    /// peer's thread.
    void run(Work work);

    // What follows is for the peer's thread.

    /// Takes `name` from whoever has it, who doesn't get it back.
    void own(const std::string& name);
    void release(const std::string& name);

    struct Method {
        std::string destination;
        const char* path;
        const char* interface;
        const char* name;
    };

    /// `outcome` runs on the peer's thread unless the peer ends first.
    template <typename... Arguments>
    void call(const Method& method, Outcome outcome, const char* types, Arguments... arguments) {
        auto* const message = messageTo(method);
        sd_bus_message_append(message, types, arguments...);
        send(message, std::move(outcome));
    }

    /// Calls another method with the arguments of `received`.
    void passOn(sd_bus_message* received, const Method& method);

    /// May be called more than once for a call.
    template <typename... Arguments>
    void answer(sd_bus_message* call, const char* types, Arguments... arguments) {
        sd_bus_message* message = nullptr;
        sd_bus_message_new_method_return(call, &message);
        sd_bus_message_append(message, types, arguments...);
        send(message, {});
    }

private:
    void serve();
    sd_bus_message* messageTo(const Method& method);
    void send(sd_bus_message* message, Outcome outcome);
    bool takeWork();

    sd_bus* bus_ = nullptr;
    std::string name_;
    CallHandler onCall_;
    const int wake_;
    std::mutex mutex_;
    std::vector<Work> work_;
    bool ending_ = false;
    std::jthread thread_;
};

} // namespace quorvale::tests
