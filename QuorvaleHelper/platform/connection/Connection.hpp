#pragma once

#include "platform/connection/Interface.hpp"

#include <functional>
#include <memory>
#include <string>

namespace quorvale::platform::connection {

/// Where a service is on the system bus, and where its client exports its own object on the same connection.
struct ServiceAddress {
    std::string name;
    std::string objectPath;
    std::string clientObjectPath;
};

/// Why a message was not delivered or not answered.
struct Error {
    std::string name; ///< A D-Bus error name.
    std::string message;

    [[nodiscard]] std::string localizedDescription() const { return name + ": " + message; }

    [[nodiscard]] std::string description() const { return localizedDescription(); }
};

using ErrorHandler = std::function<void(const Error&)>;

class Channel;

/// What a connection does with what reaches it.
struct Configuration {
    Interface exported;
    /// One for each of its methods.
    std::vector<std::function<void(std::vector<Value>)>> handlers;
    std::function<void()> onInvalidation;
    std::function<void()> onInterruption;
};

/// Sends messages to the peer. The error handler runs at most once a message, on the connection's queue: for a one-way
/// message when the bus can't deliver it, or when the connection ends before that is known, and never for what becomes
/// of the peer later; for one with a reply also when the peer or the connection ends before the reply comes, or when
/// that does not decode, and then the reply does not run. There is no time limit on a reply.
class Proxy {
public:
    Proxy(std::shared_ptr<Channel> channel, std::optional<Interface> interface, ErrorHandler errorHandler)
        : channel_(std::move(channel)), interface_(std::move(interface)), errorHandler_(std::move(errorHandler)) {}

    /// Whether the peer was declared to implement `interface`.
    [[nodiscard]] bool implements(const Interface& interface) const { return interface_ == interface; }

    /// Any thread; does not block.
    template <typename... Arguments>
    void send(const OneWay<Arguments...>& method, std::type_identity_t<Arguments>... arguments) const {
        post(describe(method), {Value(std::move(arguments))...}, {});
    }

    /// Any thread; does not block. `reply` runs at most once, on the connection's queue.
    template <typename Reply, typename... Arguments>
    void send(const Request<Reply, Arguments...>& method, std::type_identity_t<std::function<void(Reply)>> reply,
              std::type_identity_t<Arguments>... arguments) const {
        post(describe(method), {Value(std::move(arguments))...},
             [reply = std::move(reply)](Value value) { reply(std::get<Reply>(std::move(value))); });
    }

private:
    void post(Method method, std::vector<Value> arguments, std::function<void(Value)> reply) const;

    std::shared_ptr<Channel> channel_;
    std::optional<Interface> interface_;
    ErrorHandler errorHandler_;
};

/// A client's connection to a named service: a bus connection of its own, with a queue of its own (one thread) on which
/// its handlers, replies and incoming calls run in the order in which the bus sent them.
///
/// The service is a name on the system bus (`DBUS_SYSTEM_BUS_ADDRESS` chooses another), which the bus's policy lets
/// only the right process own. Incoming calls are taken from the name's owner alone; any other caller gets
/// `org.freedesktop.DBus.Error.AccessDenied`, and arguments that do not decode get
/// `org.freedesktop.DBus.Error.InvalidArgs` with the method's and the argument's name. A caller that asks for an answer
/// to a one-way method gets an empty one, the bus's receipt. Replies are taken from processes that have owned the name.
///
/// Interruption: the name lost its owner; later messages reach the next owner. Invalidation: the connection is
/// finished, because of `invalidate`, because the name has no owner and can't be activated, or because the bus went
/// away or did not let the connection in within libsystemd's time limits, about two minutes.
///
/// Configure it before `resume`, on one thread. No operation waits for the bus; those that are not configuration may be
/// called from any thread. Dropping the last reference, of its proxies too, ends the connection without the
/// invalidation handler; messages without an answer fail.
class Connection {
public:
    /// A connection that is not started; none when the bus can't be reached at once.
    static std::shared_ptr<Connection> toService(const ServiceAddress& address);

    explicit Connection(std::shared_ptr<Channel> channel) : channel_(std::move(channel)) {}

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Declares what the peer implements.
    void setRemoteObjectInterface(Interface interface) { remoteInterface_ = std::move(interface); }

    /// Declares what this side implements, and the object that gets the peer's calls. The connection keeps the object
    /// alive until it is invalidated.
    template <typename Object>
    void setExportedInterface(const ExportedInterface<Object>& interface, const std::shared_ptr<Object>& object) {
        configuration_.exported = interface.interface();
        for (const auto& handler : interface.handlers()) {
            configuration_.handlers.push_back(
                [handler, object](std::vector<Value> arguments) { handler(*object, std::move(arguments)); });
        }
    }

    /// `handler` runs at most once.
    void setInvalidationHandler(std::function<void()> handler) { configuration_.onInvalidation = std::move(handler); }

    void setInterruptionHandler(std::function<void()> handler) { configuration_.onInterruption = std::move(handler); }

    /// Starts the connection, once; nothing is sent or received before.
    void resume();

    /// Ends the connection: no call is taken any more, messages without an answer fail, then the invalidation handler
    /// runs.
    void invalidate();

    [[nodiscard]] Proxy remoteObjectProxyWithErrorHandler(ErrorHandler handler) const {
        return {channel_, remoteInterface_, std::move(handler)};
    }

private:
    std::shared_ptr<Channel> channel_;
    std::optional<Interface> remoteInterface_;
    Configuration configuration_;
};

} // namespace quorvale::platform::connection
