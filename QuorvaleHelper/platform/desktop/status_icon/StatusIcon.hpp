#pragma once

#include "platform/desktop/status_icon/StatusNotifierHostWatch.hpp"
#include "platform/desktop/status_icon/StatusNotifierItem.hpp"
#include "platform/desktop/windows/InputGrab.hpp"

#include <QBasicTimer>
#include <QDBusConnection>
#include <QMenu>
#include <QObject>
#include <QPoint>
#include <QString>

#include <chrono>
#include <memory>

class QSystemTrayIcon;

namespace quorvale::platform::desktop {

/// The program's icon in the desktop's panel. It appears with every panel that starts, before or after this program,
/// as a status notifier item; on X11, and only where nobody shows those, in the system tray of old. GUI thread.
class StatusIcon final : public QObject {
    Q_OBJECT

public:
    /// How long a panel may be away before the system tray is tried instead: one that restarts is back by then.
    static constexpr std::chrono::seconds hostGrace{5};

    /// `menu` is what the icon offers, through panels that draw it themselves and by itself for others. It has all its
    /// actions and outlives the icon.
    StatusIcon(const QDBusConnection& bus, StatusNotifierItem::Description description, QMenu& menu,
               QObject* parent = nullptr);
    ~StatusIcon() override;
    StatusIcon(const StatusIcon&) = delete;
    StatusIcon& operator=(const StatusIcon&) = delete;

    /// Plain text.
    void setToolTip(const QString& text);

    void setAnnouncements(StatusNotifierItem::Announcements announcements) { item_.setAnnouncements(announcements); }

Q_SIGNALS:
    /// The user wants the window of the icon, which is at `anchor`: logical pixels of the whole desktop; on Wayland
    /// what the panel says.
    void activated(QPoint anchor, const QString& activationToken);
    /// A sentence for the log.
    void failed(const QString& what);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void followHost();
    void showInSystemTray();

    QMenu& menu_;
    InputGrab menuGrab_{menu_};
    StatusNotifierItem item_;
    StatusNotifierHostWatch host_;
    QBasicTimer absence_;
    /// The panel has been away for long enough, if it still is.
    bool isGraceOver_ = false;
    std::unique_ptr<QSystemTrayIcon> trayIcon_;
};

} // namespace quorvale::platform::desktop
