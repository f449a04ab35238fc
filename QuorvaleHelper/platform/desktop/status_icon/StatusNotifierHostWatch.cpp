#include "platform/desktop/status_icon/StatusNotifierHostWatch.hpp"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <limits>
#include <utility>

namespace quorvale::platform::desktop {

namespace {

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
const auto watcherInterface = QStringLiteral("org.kde.StatusNotifierWatcher");
/// A watcher that hangs hasn't said that no panel is there, and may say so late.
constexpr int noTimeLimit = std::numeric_limits<int>::max();
const auto noOwner = QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");

template <typename Finished>
void call(QDBusConnection& bus, const QDBusMessage& message, QObject* context, Finished finished) {
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(message, noTimeLimit), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [finished = std::move(finished)](QDBusPendingCallWatcher* done) {
                         done->deleteLater();
                         finished(*done);
                     });
}

} // namespace

StatusNotifierHostWatch::StatusNotifierHostWatch(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)) {
    auto* const owners = new QDBusServiceWatcher(watcherName, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { setOwner(owner); });
    // With a sender's name, QtDBus would wait for the bus to tell its owner; watcherSignal() looks at the sender.
    for (const auto* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_.connect({}, watcherPath, watcherInterface, QString::fromLatin1(signal), this,
                     SLOT(watcherSignal(QDBusMessage)));
    }
    askForOwner();
}

void StatusNotifierHostWatch::ask() {
    if (owner_.isEmpty()) {
        askForOwner();
    } else {
        askForHost();
    }
}

void StatusNotifierHostWatch::watcherSignal(const QDBusMessage& message) {
    if (message.service() == owner_) {
        askForHost();
    }
}

void StatusNotifierHostWatch::askForOwner() {
    auto message =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    message << watcherName;
    call(bus_, message, this, [this, question = ++question_](const QDBusPendingReply<QString>& reply) {
        // A change that was told meanwhile is at least as new as this answer.
        if (question != question_) {
            return;
        }
        if (reply.isError() && reply.error().name() != noOwner) {
            Q_EMIT failed(QStringLiteral("The owner of %1 is not known: %2").arg(watcherName, reply.error().message()));
        }
        setOwner(reply.isError() ? QString() : reply.value());
    });
}

void StatusNotifierHostWatch::setOwner(const QString& owner) {
    owner_ = owner;
    ++question_;
    if (owner_.isEmpty()) {
        setHost(Host::Absent);
        Q_EMIT answered();
        return;
    }
    setHost(Host::Unknown);
    registerItem();
    askForHost();
}

void StatusNotifierHostWatch::registerItem() {
    auto message = QDBusMessage::createMethodCall(owner_, watcherPath, watcherInterface,
                                                  QStringLiteral("RegisterStatusNotifierItem"));
    // The unique name: it goes with the connection, and a confined program may own no other.
    message << bus_.baseService();
    call(bus_, message, this, [this](const QDBusPendingReply<>& reply) {
        if (reply.isError()) {
            Q_EMIT failed(QStringLiteral("The status icon is not registered: %1").arg(reply.error().message()));
        }
    });
}

void StatusNotifierHostWatch::askForHost() {
    auto message = QDBusMessage::createMethodCall(
        owner_, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message << watcherInterface << QStringLiteral("IsStatusNotifierHostRegistered");
    call(bus_, message, this, [this, question = ++question_](const QDBusPendingReply<QDBusVariant>& reply) {
        if (question != question_) {
            return;
        }
        const auto value = reply.isError() ? QVariant() : reply.value().variant();
        const bool isTold = value.metaType() == QMetaType::fromType<bool>();
        if (!isTold) {
            const auto why = reply.isError() ? reply.error().message() : QStringLiteral("the answer is not a Boolean");
            Q_EMIT failed(QStringLiteral("Whether a panel shows status icons is not known: %1").arg(why));
        }
        setHost(isTold && value.toBool() ? Host::Present : Host::Absent);
        Q_EMIT answered();
    });
}

void StatusNotifierHostWatch::setHost(Host host) {
    if (std::exchange(host_, host) != host) {
        Q_EMIT hostChanged();
    }
}

} // namespace quorvale::platform::desktop
