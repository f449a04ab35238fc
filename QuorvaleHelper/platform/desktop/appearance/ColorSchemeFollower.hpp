#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <memory>

namespace quorvale::platform::desktop {

class XSettings;

/// Makes the application's palette dark while the desktop prefers that, where Qt's own integration hasn't done so: by
/// the settings portal's color-scheme or, where that prefers nothing, on X11 by a GTK theme with "dark" in its name. An
/// application that has a dark palette anyway is left alone. Nothing waits for the portal. GUI thread.
/// https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.Settings.html
class ColorSchemeFollower final : public QObject {
    Q_OBJECT

public:
    /// `bus` is the session bus. Begins once the event loop runs, before any window is shown there.
    explicit ColorSchemeFollower(QDBusConnection bus, QObject* parent = nullptr);
    ~ColorSchemeFollower() override;

private Q_SLOTS:
    void settingChanged(const QDBusMessage& message);

private:
    void begin();
    void askForOwner();
    void ask();
    void take(const QVariant& scheme);
    void update();

    QDBusConnection bus_;
    /// The only one who is believed; empty while nobody is known to have the portal's name.
    QString owner_;
    std::uint32_t question_ = 0;
    /// As the portal numbers them; 0 is none.
    std::uint32_t preference_ = 0;
    std::unique_ptr<XSettings> settings_;
    bool darkened_ = false;
};

} // namespace quorvale::platform::desktop
