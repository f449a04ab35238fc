#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>

#include <functional>
#include <vector>

namespace quorvale::platform::desktop {

/// One line of a menu, and what the user's choice of it does.
struct MenuItem {
    QString label; ///< plain text
    std::function<void()> action;
};

using MenuItems = std::vector<MenuItem>;

/// A menu that panels draw themselves: com.canonical.dbusmenu, in its version without
/// groups of events, for a list of items that doesn't change. GUI thread.
/// https://github.com/AyatanaIndicators/libdbusmenu/blob/master/libdbusmenu-glib/dbus-menu.xml
class DBusMenu final : public QObject, public QDBusContext {
    Q_OBJECT

public:
    /// The object path at which a status notifier item of `bus` has its menu.
    static const QString path;

    DBusMenu(QDBusConnection bus, MenuItems items, QObject* parent = nullptr);
    ~DBusMenu() override;
    DBusMenu(const DBusMenu&) = delete;
    DBusMenu& operator=(const DBusMenu&) = delete;

    [[nodiscard]] const MenuItems& items() const { return items_; }

private:
    QDBusConnection bus_;
    MenuItems items_;
};

} // namespace quorvale::platform::desktop
