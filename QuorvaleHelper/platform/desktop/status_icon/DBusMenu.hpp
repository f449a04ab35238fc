#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QList>
#include <QMenu>
#include <QObject>
#include <QString>

#include <cstdint>

namespace quorvale::platform::desktop {

/// A menu that panels draw themselves: com.canonical.dbusmenu, in its version without groups of events, which tells
/// panels not to send any. It offers the actions that the menu has when this object is made, separators among them;
/// their texts and icons may change, and what changes in one turn of the event loop is told at once. GUI thread.
/// https://github.com/AyatanaIndicators/libdbusmenu/blob/master/libdbusmenu-glib/dbus-menu.xml
class DBusMenu final : public QObject, public QDBusContext {
    Q_OBJECT

public:
    /// The object path at which a status notifier item of `bus` has its menu.
    static const QString path;

    /// `menu` outlives this object.
    DBusMenu(QDBusConnection bus, const QMenu& menu, QObject* parent = nullptr);
    ~DBusMenu() override;
    DBusMenu(const DBusMenu&) = delete;
    DBusMenu& operator=(const DBusMenu&) = delete;

    [[nodiscard]] const QList<QAction*>& actions() const { return actions_; }

Q_SIGNALS:
    /// The user chose `action`, at a time by the panel's clock: on X11 the server's, or 0.
    void chosen(QAction* action, std::uint32_t timestamp);

private:
    QDBusConnection bus_;
    const QList<QAction*> actions_;
};

} // namespace quorvale::platform::desktop
