#include "agent_simulator/Agent.hpp"

#include <QDBusError>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace quorvale::agent_simulator {

namespace {

constexpr auto agentName = "QVL7T4M2XK.com.quorvale.QuorvaleFilter";
constexpr auto agentPath = "/com/quorvale/QuorvaleFilter";
constexpr auto clientPath = "/com/quorvale/QuorvaleHelper";
constexpr auto clientInterface = "com.quorvale.ClientCommunication";
constexpr auto agentConnection = "agent";
constexpr auto impostorConnection = "impostor";

QDBusConnection unconnected() {
    return QDBusConnection(QString());
}

QDBusConnection connectToSystemBus(const char* name) {
    return QDBusConnection::connectToBus(QDBusConnection::SystemBus, QString::fromLatin1(name));
}

ClientCall statusPush(bool value) {
    return {.method = QStringLiteral("updateProtectionStatus"), .arguments = {value}, .target = {}};
}

QDBusMessage messageTo(const QString& client, const ClientCall& call) {
    auto message = QDBusMessage::createMethodCall(client, QString::fromLatin1(clientPath),
                                                  QString::fromLatin1(clientInterface), call.method);
    message.setArguments(call.arguments);
    message.setAutoStartService(false);
    return message;
}

} // namespace

Agent::Agent(EventWriter& events, StateReply reply)
    : events_(events), reply_(std::move(reply)), bus_(unconnected()), impostor_(unconnected()) {
    clientWatcher_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&clientWatcher_, &QDBusServiceWatcher::serviceUnregistered, this, &Agent::forgetClient);
}

Agent::~Agent() {
    stop();
    impostor_ = unconnected();
    QDBusConnection::disconnectFromBus(QString::fromLatin1(impostorConnection));
}

std::expected<void, QString> Agent::start() {
    bus_ = connectToSystemBus(agentConnection);
    if (!bus_.isConnected()) {
        return std::unexpected(QStringLiteral("no system bus: ") + bus_.lastError().message());
    }
    bus_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"), QStringLiteral("org.freedesktop.DBus.Local"),
                 QStringLiteral("Disconnected"), this, SLOT(noteLostBus()));
    clientWatcher_.setConnection(bus_);
    bus_.registerObject(QString::fromLatin1(agentPath), this, QDBusConnection::ExportAllSlots);
    return acquireName();
}

void Agent::stop() {
    held_.clear();
    clients_.clear();
    clientWatcher_.setWatchedServices({});
    // The connection closes when nothing refers to it any more.
    clientWatcher_.setConnection(unconnected());
    bus_ = unconnected();
    QDBusConnection::disconnectFromBus(QString::fromLatin1(agentConnection));
}

std::expected<void, QString> Agent::acquireName() {
    if (!bus_.registerService(QString::fromLatin1(agentName))) {
        const auto error = bus_.lastError();
        return std::unexpected(QStringLiteral("the name %1 is not to be had: %2")
                                   .arg(QString::fromLatin1(agentName),
                                        error.isValid() ? error.message() : QStringLiteral("it is taken")));
    }
    events_.write({QStringLiteral("ready"), bus_.baseService()});
    return {};
}

void Agent::releaseName() {
    bus_.unregisterService(QString::fromLatin1(agentName));
    events_.write({QStringLiteral("released"), bus_.baseService()});
}

void Agent::answerHeld() {
    for (const auto& [call, reply] : std::exchange(held_, {})) {
        sendState(call, reply);
    }
}

std::expected<void, QString> Agent::push(Sender sender, const ClientCall& call) {
    const auto target = receiver(call.target);
    if (!target) {
        return std::unexpected(target.error());
    }
    send(sender, *target, call);
    return {};
}

void Agent::send(Sender sender, const QString& client, const ClientCall& call) {
    if (sender == Sender::Impostor && !impostor_.isConnected()) {
        impostor_ = connectToSystemBus(impostorConnection);
    }
    const auto& bus = sender == Sender::Impostor ? impostor_ : bus_;
    auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(messageTo(client, call)), this);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, sender, method = call.method] {
        answer->deleteLater();
        const auto event =
            sender == Sender::Impostor ? QStringLiteral("impostor-result") : QStringLiteral("push-result");
        if (answer->isError()) {
            const auto error = answer->error();
            events_.write({event, method, QStringLiteral("error"), error.name(), error.message()});
        } else {
            events_.write({event, method, QStringLiteral("ok")});
        }
    });
}

std::expected<void, QString> Agent::flood(Flood::Order order, const QString& target) {
    const auto client = receiver(target);
    if (!client) {
        return std::unexpected(client.error());
    }
    const auto send = [this, client = *client](const QList<bool>& values) {
        return bus_.asyncCall(messageTo(client, statusPush(values.front())));
    };
    new Flood(this, order, 1, send, [this](const QStringList& outcome) { events_.write(outcome); });
    return {};
}

std::expected<QString, QString> Agent::receiver(const QString& target) const {
    if (!target.isEmpty()) {
        return target;
    }
    if (clients_.isEmpty()) {
        return std::unexpected(QStringLiteral("no client is registered, and no @NAME is given"));
    }
    return clients_.last();
}

void Agent::registerClientWith(const QString& identity) {
    noteCall();
    const auto client = message().service();
    clients_.removeAll(client);
    clients_.append(client);
    clientWatcher_.addWatchedService(client);
    events_.write({QStringLiteral("registered"), client, identity});
}

bool Agent::updateSharedDefaultsWith(const QVariantMap& /*defaults*/) {
    noteCall();
    return true;
}

QString Agent::updateGeoDefaults() {
    noteCall();
    return QStringLiteral("{}");
}

QStringList Agent::agentState() {
    noteCall();
    setDelayedReply(true);
    if (reply_.moment == StateReply::Moment::WhenTold) {
        held_.append({.call = message(), .reply = reply_});
        events_.write({QStringLiteral("held"), QStringLiteral("agentState"), message().service()});
    } else {
        sendState(message(), reply_);
    }
    return {};
}

void Agent::reloadCloud() {
    noteCall();
}

void Agent::noteCall() {
    events_.write({QStringLiteral("call"), message().member(), message().service()});
}

void Agent::sendState(const QDBusMessage& call, const StateReply& reply) {
    switch (reply.kind) {
    case StateReply::Kind::Text:
        bus_.send(call.createReply(QStringList{reply.text.leftJustified(reply.width)}));
        events_.write({QStringLiteral("replied"), call.member(), call.service(), reply.text});
        break;
    case StateReply::Kind::None:
        bus_.send(call.createReply(QStringList()));
        events_.write({QStringLiteral("replied"), call.member(), call.service()});
        break;
    case StateReply::Kind::Several:
        bus_.send(call.createReply(QStringList{reply.text, reply.text}));
        events_.write({QStringLiteral("replied"), call.member(), call.service(), reply.text, reply.text});
        break;
    case StateReply::Kind::WrongType:
        bus_.send(call.createReply(reply.text));
        events_.write({QStringLiteral("replied"), call.member(), call.service(), QStringLiteral("s:") + reply.text});
        break;
    case StateReply::Kind::Error:
        bus_.send(call.createErrorReply(reply.text, reply.errorMessage));
        events_.write({QStringLiteral("failed"), call.member(), call.service(), reply.text, reply.errorMessage});
        break;
    case StateReply::Kind::Never:
        break;
    }
    if (reply.thenPush) {
        send(Sender::Agent, call.service(), statusPush(*reply.thenPush));
    }
}

void Agent::forgetClient(const QString& client) {
    clients_.removeAll(client);
    clientWatcher_.removeWatchedService(client);
    events_.write({QStringLiteral("client-gone"), client});
}

void Agent::noteLostBus() {
    clients_.clear();
    events_.write({QStringLiteral("bus-gone")});
}

} // namespace quorvale::agent_simulator
