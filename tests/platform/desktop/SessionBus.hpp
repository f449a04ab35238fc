#pragma once

#include "support/PrivateBus.hpp"
#include "support/waitUntil.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <gtest/gtest.h>

namespace quorvale::platform::desktop {

/// A session bus of the test's own with two clients on it: the program and some other part of the desktop.
class SessionBus {
public:
    SessionBus() : program(connect(QStringLiteral("program"))), other(connect(QStringLiteral("other"))) {}

    ~SessionBus() {
        QDBusConnection::disconnectFromBus(QStringLiteral("program"));
        QDBusConnection::disconnectFromBus(QStringLiteral("other"));
    }

    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// The answer to `message`, which `other` sends.
    [[nodiscard]] QDBusMessage ask(const QDBusMessage& message) const {
        const auto call = other.asyncCall(message);
        EXPECT_TRUE(tests::waitUntil([&] { return call.isFinished(); }));
        return call.reply();
    }

    /// Waits until `from` has got all that was sent to it so far.
    static void roundTrip(const QDBusConnection& from) {
        const auto call = from.asyncCall(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
        EXPECT_TRUE(tests::waitUntil([&] { return call.isFinished(); }));
    }

private:
    QDBusConnection connect(const QString& name) {
        return QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), name);
    }

    tests::PrivateBus bus_;

public:
    QDBusConnection program;
    QDBusConnection other;
};

} // namespace quorvale::platform::desktop
