#include "platform/connection/Connection.hpp"

#include "platform/connection/Coding.hpp"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <expected>
#include <limits>
#include <map>
#include <utility>

namespace quorvale::platform::connection {

namespace {

constexpr int noTimeLimit = std::numeric_limits<int>::max();

QString busName() {
    return QStringLiteral("org.freedesktop.DBus");
}

QString busPath() {
    return QStringLiteral("/org/freedesktop/DBus");
}

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The bus is opened by address, because libdbus would go on using the one it read from the environment first.
QString systemBusAddress() {
    return qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS", QStringLiteral("unix:path=/run/dbus/system_bus_socket"));
}

QString argumentName(const Method& method, std::size_t index) {
    return index < method.parameters.size() ? toQString(method.parameters[index].name)
                                            : QStringLiteral("number %1").arg(index + 1);
}

/// The arguments of a call, or the index of the first that is missing, superfluous or of another type.
std::expected<std::vector<Value>, std::size_t> decode(const Method& method, const QList<QVariant>& received) {
    const auto count = static_cast<std::size_t>(received.size());
    std::vector<Value> arguments;
    for (std::size_t index = 0; index < method.parameters.size(); ++index) {
        auto value = index < count ? fromBus(method.parameters[index].type, received[static_cast<qsizetype>(index)])
                                   : std::nullopt;
        if (!value) {
            return std::unexpected(index);
        }
        arguments.push_back(*std::move(value));
    }
    if (count > arguments.size()) {
        return std::unexpected(arguments.size());
    }
    return arguments;
}

} // namespace

std::string Error::localizedDescription() const {
    return name + ": " + message;
}

/// The part of a connection that lives on the connection's thread and is touched there only.
class Channel final : public QDBusVirtualObject {
    Q_OBJECT

public:
    using Incoming = std::function<void(std::vector<Value>)>;

    static std::shared_ptr<Channel> create(const ServiceAddress& address, const QDBusConnection& bus) {
        auto* const thread = new QThread;
        thread->setObjectName(QStringLiteral("agent connection"));
        QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
        auto* const channel = new Channel(address, bus);
        channel->moveToThread(thread);
        thread->start();
        return {channel, [](Channel* last) { last->post([last] { last->retire(); }); }};
    }

    /// Runs `work` on the connection's thread, after everything that was posted before.
    template <typename Work>
    void post(Work work) {
        QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
    }

    void resume() {
        if (!bus_.isConnected()) {
            becomeInvalid();
            return;
        }
        bus_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                     QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                     SLOT(busDisconnected()));
        // Not QDBusServiceWatcher: its signal takes one turn more than an incoming call does, so that a new owner's
        // first call would be taken for a stranger's.
        bus_.connect(busName(), busPath(), busName(), QStringLiteral("NameOwnerChanged"), {service()},
                     QStringLiteral("sss"), this, SLOT(nameOwnerChanged(QDBusMessage)));
        bus_.registerVirtualObject(toQString(address_.clientObjectPath), this);
        askBus(QStringLiteral("GetNameOwner"), {service()}, [this](const QDBusMessage& answer) {
            if (answer.type() == QDBusMessage::ReplyMessage) {
                owner_ = answer.arguments().value(0).toString();
            } else {
                startService();
            }
        });
    }

    void send(const Method& method, const std::vector<Value>& arguments, const ErrorHandler& onError,
              const std::function<void(Value)>& onReply) {
        if (!valid_) {
            onError({"org.freedesktop.DBus.Error.Disconnected", "The connection was invalidated."});
            return;
        }
        auto message =
            QDBusMessage::createMethodCall(service(), servicePath(), toQString(remoteName_), toQString(method.name));
        for (const auto& argument : arguments) {
            message << toBus(argument);
        }
        pending_.emplace(watch(message), Pending{method.reply, onError, onReply});
    }

    void becomeInvalid() {
        if (!std::exchange(valid_, false)) {
            return;
        }
        bus_.unregisterObject(toQString(address_.clientObjectPath));
        const auto name = bus_.name();
        bus_ = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name);
        for (const auto& [watcher, message] : std::exchange(pending_, {})) {
            watcher->deleteLater();
            message.onError({"org.freedesktop.DBus.Error.Disconnected", "The connection was invalidated."});
        }
        incoming_.clear();
        onInterruption_ = {};
        if (const auto handler = std::exchange(onInvalidation_, {})) {
            handler();
        }
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override {
        auto xml = QStringLiteral("<interface name=\"%1\">").arg(toQString(exported_.name));
        for (const auto& method : exported_.methods) {
            xml += QStringLiteral("<method name=\"%1\">").arg(toQString(method.name));
            for (const auto& [name, type] : method.parameters) {
                xml += QStringLiteral("<arg name=\"%1\" type=\"%2\" direction=\"in\"/>")
                           .arg(toQString(name), toQString(signatureOf(type)));
            }
            xml += QStringLiteral("</method>");
        }
        return xml + QStringLiteral("</interface>");
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*connection*/) override {
        // A call that was in the queue already. The bus answers its caller when it sees the connection closed.
        if (!valid_) {
            return true;
        }
        if (!message.interface().isEmpty() && message.interface() != toQString(exported_.name)) {
            return false;
        }
        if (owner_.isEmpty() || message.service() != owner_) {
            answer(message, message.createErrorReply(QDBusError::AccessDenied,
                                                     QStringLiteral("Only the owner of %1 may call.").arg(service())));
            return true;
        }
        const auto method = std::ranges::find_if(
            exported_.methods, [&](const Method& known) { return toQString(known.name) == message.member(); });
        if (method == exported_.methods.end()) {
            answer(message, message.createErrorReply(QDBusError::UnknownMethod,
                                                     QStringLiteral("There is no method %1.").arg(message.member())));
            return true;
        }
        auto arguments = decode(*method, message.arguments());
        if (!arguments) {
            answer(message,
                   message.createErrorReply(QDBusError::InvalidArgs,
                                            QStringLiteral("%1: argument %2 does not decode.")
                                                .arg(message.member(), argumentName(*method, arguments.error()))));
            return true;
        }
        incoming_[static_cast<std::size_t>(method - exported_.methods.begin())](*std::move(arguments));
        answer(message, message.createReply());
        return true;
    }

    std::string_view remoteName_;
    Interface exported_;
    std::vector<Incoming> incoming_;
    std::function<void()> onInvalidation_;
    std::function<void()> onInterruption_;

private Q_SLOTS:

    void busDisconnected() { becomeInvalid(); }

    void nameOwnerChanged(const QDBusMessage& message) {
        // Another process can address a signal of any name to us; only the bus itself is believed.
        if (message.service() != busName()) {
            return;
        }
        const auto previous = std::exchange(owner_, message.arguments().value(2).toString());
        if (!previous.isEmpty() && onInterruption_) {
            onInterruption_();
        }
    }

private:
    struct Pending {
        std::optional<Type> reply;
        ErrorHandler onError;
        std::function<void(Value)> onReply;
    };

    Channel(ServiceAddress address, QDBusConnection bus) : address_(std::move(address)), bus_(std::move(bus)) {}

    [[nodiscard]] QString service() const { return toQString(address_.name); }

    [[nodiscard]] QString servicePath() const { return toQString(address_.objectPath); }

    void startService() {
        askBus(QStringLiteral("StartServiceByName"), {service(), 0U}, [this](const QDBusMessage& answer) {
            if (answer.type() == QDBusMessage::ErrorMessage) {
                becomeInvalid();
            }
        });
    }

    template <typename Handler>
    void askBus(const QString& member, const QList<QVariant>& arguments, Handler handler) {
        auto message = QDBusMessage::createMethodCall(busName(), busPath(), busName(), member);
        message.setArguments(arguments);
        auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, noTimeLimit), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, handler](QDBusPendingCallWatcher* done) {
            done->deleteLater();
            if (valid_) {
                handler(done->reply());
            }
        });
    }

    QDBusPendingCallWatcher* watch(const QDBusMessage& message) {
        // An answer is asked for also where there is nothing to answer: it is how the bus tells that a message did not
        // arrive.
        auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, noTimeLimit), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, &Channel::finish);
        return watcher;
    }

    void finish(QDBusPendingCallWatcher* watcher) {
        watcher->deleteLater();
        const auto message = pending_.extract(watcher);
        if (message.empty()) {
            return;
        }
        const auto& [replyType, onError, onReply] = message.mapped();
        const auto answer = watcher->reply();
        if (answer.type() == QDBusMessage::ErrorMessage) {
            onError({answer.errorName().toStdString(), answer.errorMessage().toStdString()});
            return;
        }
        if (!replyType) {
            return;
        }
        const auto values = answer.arguments();
        auto value = values.size() == 1 ? fromBus(*replyType, values.front()) : std::nullopt;
        if (value) {
            onReply(*std::move(value));
        } else {
            onError({"org.freedesktop.DBus.Error.InvalidSignature",
                     "The reply is of type \"" + answer.signature().toStdString() + "\"."});
        }
    }

    void answer(const QDBusMessage& call, const QDBusMessage& reply) {
        if (call.isReplyRequired()) {
            bus_.send(reply);
        }
    }

    /// Nobody holds the channel any more.
    void retire() {
        onInvalidation_ = {};
        becomeInvalid();
        deleteLater();
        thread()->quit();
    }

    const ServiceAddress address_;
    QDBusConnection bus_;
    QString owner_;
    bool valid_ = true;
    std::map<QDBusPendingCallWatcher*, Pending> pending_;
};

Proxy::Proxy(std::shared_ptr<Channel> channel, std::optional<Interface> interface, ErrorHandler errorHandler)
    : channel_(std::move(channel)), interface_(std::move(interface)), errorHandler_(std::move(errorHandler)) {}

void Proxy::post(Method method, std::vector<Value> arguments, std::function<void(Value)> reply) const {
    channel_->post([channel = channel_.get(), method = std::move(method), arguments = std::move(arguments),
                    onError = errorHandler_,
                    onReply = std::move(reply)] { channel->send(method, arguments, onError, onReply); });
}

std::shared_ptr<Connection> Connection::toService(const ServiceAddress& address) {
    static std::atomic<unsigned> count = 0;
    const auto name = QStringLiteral("quorvale-connection-%1").arg(++count);
    const auto bus = QDBusConnection::connectToBus(systemBusAddress(), name);
    if (!bus.isConnected()) {
        QDBusConnection::disconnectFromBus(name);
        return nullptr;
    }
    return std::make_shared<Connection>(Channel::create(address, bus));
}

Connection::Connection(std::shared_ptr<Channel> channel) : channel_(std::move(channel)) {}

Connection::~Connection() = default;

void Connection::setRemoteObjectInterface(Interface interface) {
    channel_->post([channel = channel_.get(), name = interface.name] { channel->remoteName_ = name; });
    remoteInterface_ = std::move(interface);
}

void Connection::exportMethods(Interface interface, std::vector<std::function<void(std::vector<Value>)>> handlers) {
    channel_->post([channel = channel_.get(), interface = std::move(interface), handlers = std::move(handlers)] {
        channel->exported_ = interface;
        channel->incoming_ = handlers;
    });
}

void Connection::setInvalidationHandler(std::function<void()> handler) {
    channel_->post([channel = channel_.get(), handler = std::move(handler)] { channel->onInvalidation_ = handler; });
}

void Connection::setInterruptionHandler(std::function<void()> handler) {
    channel_->post([channel = channel_.get(), handler = std::move(handler)] { channel->onInterruption_ = handler; });
}

void Connection::resume() {
    channel_->post([channel = channel_.get()] { channel->resume(); });
}

void Connection::invalidate() {
    channel_->post([channel = channel_.get()] { channel->becomeInvalid(); });
}

Proxy Connection::remoteObjectProxyWithErrorHandler(ErrorHandler handler) const {
    return {channel_, remoteInterface_, std::move(handler)};
}

} // namespace quorvale::platform::connection

#include "Connection.moc"
