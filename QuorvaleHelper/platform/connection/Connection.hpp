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

    [[nodiscard]] std::string localizedDescription() const;

    [[nodiscard]] std::string description() const { return localizedDescription(); }
};

using ErrorHandler = std::function<void(const Error&)>;

class Channel;

/// Sends messages to the peer. The error handler runs for each message that can't be delivered, or whose reply does not
/// come because the connection or the peer ended or does not decode: at most once a message, on the connection's queue,
/// and then the message's reply does not run. There is no time limit on a reply.
class Proxy {
public:
    Proxy(std::shared_ptr<Channel> channel, std::optional<Interface> interface, ErrorHandler errorHandler);

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
/// its handlers, replies and incoming calls run in order.
///
/// The service is a name on the system bus (`DBUS_SYSTEM_BUS_ADDRESS` chooses another), which the bus's policy lets
/// only the right process own. Incoming calls are taken from the name's owner alone; any other caller gets
/// `org.freedesktop.DBus.Error.AccessDenied`, and arguments that do not decode get
/// `org.freedesktop.DBus.Error.InvalidArgs` with the method's and the argument's name. A caller that asks for an answer
/// to a one-way method gets an empty one, the bus's receipt.
///
/// Interruption: the name lost its owner; later messages reach the next owner. Invalidation: the connection is
/// finished, because of `invalidate`, because the name has no owner and can't be activated, or because the bus went
/// away.
///
/// Configure it before `resume`. Every operation may be called from any thread and returns without waiting for the bus,
/// except for `toService`. Dropping the last reference, of its proxies too, ends the connection without the
/// invalidation handler; messages without an answer fail.
class Connection {
public:
    /// A connection that is not started; none when the bus can't be reached.
    static std::shared_ptr<Connection> toService(const ServiceAddress& address);

    explicit Connection(std::shared_ptr<Channel> channel);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Declares what the peer implements.
    void setRemoteObjectInterface(Interface interface);

    /// Declares what this side implements, and the object that gets the peer's calls. The connection keeps the object
    /// alive until it is invalidated.
    template <typename Object>
    void setExportedInterface(const ExportedInterface<Object>& interface, const std::shared_ptr<Object>& object) {
        std::vector<std::function<void(std::vector<Value>)>> handlers;
        for (const auto& handler : interface.handlers()) {
            handlers.push_back(
                [handler, object](std::vector<Value> arguments) { handler(*object, std::move(arguments)); });
        }
        exportMethods(interface.interface(), std::move(handlers));
    }

    /// `handler` runs at most once.
    void setInvalidationHandler(std::function<void()> handler);
    void setInterruptionHandler(std::function<void()> handler);

    /// Starts the connection; nothing is sent or received before.
    void resume();

    /// Ends the connection: no call is taken any more, messages without an answer fail, then the invalidation handler
    /// runs.
    void invalidate();

    [[nodiscard]] Proxy remoteObjectProxyWithErrorHandler(ErrorHandler handler) const;

private:
    void exportMethods(Interface interface, std::vector<std::function<void(std::vector<Value>)>> handlers);

    std::shared_ptr<Channel> channel_;
    std::optional<Interface> remoteInterface_;
};

} // namespace quorvale::platform::connection
