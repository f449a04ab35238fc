#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>

namespace quorvale::platform::desktop {

/// Makes the application's palette dark while the desktop prefers that (the settings portal's color-scheme), where
/// Qt's own integration hasn't done so. One that has a dark palette anyway, or a desktop without the portal, is left
/// alone. Nothing waits for an answer. GUI thread.
/// https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.Settings.html
class ColorSchemeFollower final : public QObject {
    Q_OBJECT

public:
    /// `bus` is the session bus.
    explicit ColorSchemeFollower(QDBusConnection bus, QObject* parent = nullptr);

private Q_SLOTS:
    void settingChanged(const QDBusMessage& message);

private:
    void apply(const QVariant& scheme);

    /// The only one who is believed; empty while nobody is known to have the portal's name.
    QString owner_;
    bool told_ = false;
    bool darkened_ = false;
};

} // namespace quorvale::platform::desktop
