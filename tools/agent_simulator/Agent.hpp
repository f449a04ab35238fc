#pragma once

#include "agent_simulator/ClientCall.hpp"
#include "agent_simulator/StateReply.hpp"
#include "support/EventWriter.hpp"
#include "support/Flood.hpp"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QVariantMap>

#include <expected>

namespace quorvale::agent_simulator {

using simulator::EventWriter;
using simulator::Flood;

/// The agent's side of the link: its name and object on the system bus, and its calls to the registered client.
class Agent final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quorvale.AgentCommunication")

public:
    enum class Sender {
        /// The connection that owns the agent's name.
        Agent,
        /// A second connection, which doesn't.
        Impostor,
    };

    Agent(EventWriter& events, StateReply reply);
    ~Agent() override;

    /// Connects to the system bus and takes the agent's name, or says why that fails.
    std::expected<void, QString> start();
    /// Gives up the name and the connection; clients are forgotten and held answers dropped.
    void stop();

    std::expected<void, QString> acquireName();
    void releaseName();

    void setStateReply(StateReply reply) { reply_ = std::move(reply); }

    /// Sends the answers that a late reply holds back.
    void answerHeld();

    /// Calls the client; the outcome is an event.
    std::expected<void, QString> push(Sender sender, const ClientCall& call);

    /// Calls updateProtectionStatus of the client that registered last, or of `target`, again and again; one event
    /// tells the outcome. A restart doesn't end it.
    std::expected<void, QString> flood(Flood::Order order, const QString& target);

    /// The bus names of the registered clients that are still there.
    [[nodiscard]] const QStringList& clients() const { return clients_; }

public Q_SLOTS: // the methods of com.quorvale.AgentCommunication
    Q_NOREPLY void registerClientWith(const QString& identity);
    bool updateSharedDefaultsWith(const QVariantMap& defaults);
    QString updateGeoDefaults();
    QStringList agentState();
    Q_NOREPLY void reloadCloud();

private:
    struct Held {
        QDBusMessage call;
        StateReply reply;
    };

    /// The client that registered last, unless `target` names one.
    [[nodiscard]] std::expected<QString, QString> receiver(const QString& target) const;
    void send(Sender sender, const QString& client, const ClientCall& call);
    void noteCall();
    void sendState(const QDBusMessage& call, const StateReply& reply);
    void forgetClient(const QString& client);
    Q_SLOT void noteLostBus();

    EventWriter& events_;
    StateReply reply_;
    QDBusConnection bus_;
    QDBusConnection impostor_;
    QDBusServiceWatcher clientWatcher_;
    QStringList clients_;
    QList<Held> held_;
};

} // namespace quorvale::agent_simulator
