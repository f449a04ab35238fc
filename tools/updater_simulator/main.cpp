#include "support/Flood.hpp"
#include "support/Simulator.hpp"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

using quorvale::simulator::Commands;
using quorvale::simulator::Flood;
using quorvale::simulator::Simulator;

namespace {

constexpr auto commandsHelp =
    "  notify TEXT            send the notification with this text, such as\n"
    "                         {\"running\":true,\"restart\":false,\"terminate\":false}\n"
    "  flood COUNT VALUE      send so many that neither restart nor terminate, running true and false in turn and\n"
    "                         VALUE at last, as fast as the helper takes them; other commands are obeyed meanwhile\n";

/// A signal has no answer. This is answered by the helper's main thread, which gets it after the signals before it.
QDBusPendingCall askHelper() {
    auto question = QDBusMessage::createMethodCall(
        QStringLiteral("com.quorvale.QuorvaleHelper"), QStringLiteral("/com/quorvale/QuorvaleHelper"),
        QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
    question.setAutoStartService(false);
    return QDBusConnection::sessionBus().asyncCall(question);
}

void notify(const QString& text) {
    auto signal = QDBusMessage::createSignal(QStringLiteral("/com/quorvale/Updater"),
                                             QStringLiteral("com.quorvale.DistributedNotification"),
                                             QStringLiteral("QuorvaleHelper"));
    signal << text;
    QDBusConnection::sessionBus().send(signal);
}

QDBusPendingCall notifyOf(const QList<bool>& values) {
    for (const bool running : values) {
        notify(QStringLiteral(R"({"running":%1,"restart":false,"terminate":false})")
                   .arg(running ? QStringLiteral("true") : QStringLiteral("false")));
    }
    return askHelper();
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    Simulator simulator({
        .summary = QStringLiteral("A stand-in for the updater: sends its notification on the session bus "
                                  "(DBUS_SESSION_BUS_ADDRESS chooses another one) when it is told to."),
        .commands = QString::fromLatin1(commandsHelp) + QString::fromLatin1(Commands::help),
        .events = QStringLiteral("  ready NAME                            the session bus is there\n"
                                 "  notified                              a notification has been sent\n") +
                  QString::fromLatin1(Flood::eventHelp),
    });
    auto& events = simulator.events();
    const auto start = [&]() -> std::expected<void, QString> {
        const auto bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) {
            return std::unexpected(QStringLiteral("no session bus: ") + bus.lastError().message());
        }
        events.write({QStringLiteral("ready"), bus.baseService()});
        return {};
    };
    const auto obey = [&](const QString& word, const QString& rest) -> std::expected<void, QString> {
        if (word == u"notify") {
            notify(rest);
            events.write({QStringLiteral("notified")});
            return {};
        }
        if (word != u"flood") {
            return std::unexpected(QStringLiteral("unknown command: ") + word);
        }
        const auto order = Flood::Order::parse(rest);
        if (!order) {
            return std::unexpected(order.error());
        }
        constexpr qsizetype notificationsForEachAnswer = 16;
        new Flood(QCoreApplication::instance(), *order, notificationsForEachAnswer, notifyOf,
                  [&](const QStringList& outcome) { events.write(outcome); });
        return {};
    };
    return simulator.run(start, obey);
}
