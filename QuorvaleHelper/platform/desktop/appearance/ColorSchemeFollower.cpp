#include "platform/desktop/appearance/ColorSchemeFollower.hpp"

#include "platform/desktop/appearance/XSettings.hpp"
#include "platform/desktop/windows/WindowSystem.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>
#include <QTimer>

#include <limits>
#include <utility>

namespace quorvale::platform::desktop {

namespace {

const auto portal = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto portalInterface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto colorScheme = QStringLiteral("color-scheme");
constexpr quint32 preferDark = 1;
constexpr quint32 preferLight = 2;
/// A portal that the question starts may be long in coming.
constexpr int noTimeLimit = std::numeric_limits<int>::max();

QPalette darkPalette() {
    // Qt derives the other colours, and light text, from these.
    QPalette palette(QColor(0x3A, 0x3A, 0x3C), QColor(0x2B, 0x2B, 0x2D));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x20));
    palette.setColor(QPalette::Link, QColor(0x6C, 0xB2, 0xFF));
    return palette;
}

} // namespace

ColorSchemeFollower::ColorSchemeFollower(QDBusConnection bus, QObject* parent) : QObject(parent), bus_(std::move(bus)) {
    // Not before the icon is on its way.
    QTimer::singleShot(0, this, &ColorSchemeFollower::begin);
}

ColorSchemeFollower::~ColorSchemeFollower() = default;

void ColorSchemeFollower::begin() {
    auto* const owners = new QDBusServiceWatcher(portal, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                owner_ = owner;
                // One that went away may come back; until it says otherwise, what it said holds.
                if (!owner.isEmpty()) {
                    ask();
                }
            });
    // With a sender's name, QtDBus would wait for the bus to tell its owner; settingChanged() looks at the sender.
    bus_.connect({}, portalPath, portalInterface, QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QDBusMessage)));
    askForOwner();
    ask();
    if (windowSystem() == WindowSystem::X11) {
        settings_ = std::make_unique<XSettings>();
        connect(settings_.get(), &XSettings::themeNameChanged, this, &ColorSchemeFollower::update);
        update();
    }
}

void ColorSchemeFollower::askForOwner() {
    auto message =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    message << portal;
    auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, noTimeLimit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        const QDBusPendingReply<QString> reply = *done;
        // A change that was told meanwhile is at least as new as this answer.
        if (owner_.isEmpty() && !reply.isError()) {
            owner_ = reply.value();
        }
    });
}

void ColorSchemeFollower::ask() {
    auto message = QDBusMessage::createMethodCall(portal, portalPath, portalInterface, QStringLiteral("Read"));
    message << appearance << colorScheme;
    auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, noTimeLimit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, question = ++question_](QDBusPendingCallWatcher* done) {
                done->deleteLater();
                // A later question's answer, and a change told meanwhile, are newer.
                if (question != question_) {
                    return;
                }
                const QDBusPendingReply<QDBusVariant> reply = *done;
                // No portal and no preference are the same.
                if (reply.isError()) {
                    return;
                }
                // Read answers with a variant in a variant.
                auto value = reply.value().variant();
                if (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
                    value = value.value<QDBusVariant>().variant();
                }
                take(value);
            });
}

void ColorSchemeFollower::settingChanged(const QDBusMessage& message) {
    // Anybody can send such a signal, also to us alone.
    if (message.service() != owner_) {
        return;
    }
    const auto arguments = message.arguments();
    if (arguments.size() == 3 && arguments[0] == appearance && arguments[1] == colorScheme) {
        ++question_;
        take(arguments[2].value<QDBusVariant>().variant());
    }
}

void ColorSchemeFollower::take(const QVariant& scheme) {
    if (scheme.metaType() == QMetaType::fromType<quint32>()) {
        preference_ = scheme.value<quint32>();
        update();
    }
}

void ColorSchemeFollower::update() {
    // GTK has no other way to tell a dark theme, either.
    const bool isThemeDark = settings_ && settings_->themeName().contains(QLatin1String("dark"), Qt::CaseInsensitive);
    if (preference_ == preferDark || (preference_ != preferLight && isThemeDark)) {
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
