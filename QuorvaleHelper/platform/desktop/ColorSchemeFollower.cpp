#include "platform/desktop/ColorSchemeFollower.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>

namespace quorvale::platform::desktop {

namespace {

const auto portal = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto portalInterface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto colorScheme = QStringLiteral("color-scheme");
constexpr quint32 preferDark = 1;

QPalette darkPalette() {
    // Qt derives the other colours, and light text, from these.
    QPalette palette(QColor(0x3A, 0x3A, 0x3C), QColor(0x2B, 0x2B, 0x2D));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x20));
    palette.setColor(QPalette::Link, QColor(0x6C, 0xB2, 0xFF));
    return palette;
}

} // namespace

ColorSchemeFollower::ColorSchemeFollower(QDBusConnection bus, QObject* parent) : QObject(parent) {
    bus.connect({}, portalPath, portalInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    auto message = QDBusMessage::createMethodCall(portal, portalPath, portalInterface, QStringLiteral("Read"));
    message << appearance << colorScheme;
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *done;
        // No portal and no preference are the same, and a change told meanwhile is newer.
        if (reply.isError() || told_) {
            return;
        }
        // Read answers with a variant in a variant.
        auto value = reply.value().variant();
        if (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
            value = value.value<QDBusVariant>().variant();
        }
        apply(value);
    });
}

void ColorSchemeFollower::settingChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (arguments.size() == 3 && arguments[0] == appearance && arguments[1] == colorScheme) {
        told_ = true;
        apply(arguments[2].value<QDBusVariant>().variant());
    }
}

void ColorSchemeFollower::apply(const QVariant& scheme) {
    if (scheme.metaType() != QMetaType::fromType<quint32>()) {
        return;
    }
    if (scheme.value<quint32>() == preferDark) {
        if (QGuiApplication::palette().color(QPalette::Window).lightness() >= 128) {
            darkened_ = true;
            QGuiApplication::setPalette(darkPalette());
        }
    } else if (darkened_) {
        darkened_ = false;
        QGuiApplication::setPalette({});
    }
}

} // namespace quorvale::platform::desktop
