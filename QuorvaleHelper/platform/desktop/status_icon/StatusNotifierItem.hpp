#pragma once

#include "platform/desktop/status_icon/DBusMenu.hpp"
#include "platform/desktop/status_icon/MenuBarIcon.hpp"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

namespace quorvale::platform::desktop {

/// The object behind an icon in the panel: org.kde.StatusNotifierItem at /StatusNotifierItem. GUI thread.
/// https://www.freedesktop.org/wiki/Specifications/StatusNotifierItem/StatusNotifierItem/
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    struct Description {
        /// The same for every run of the program: panels keep the user's settings by it.
        QString id;
        /// Names the program where panels list their icons.
        QString title;
        /// Called once, when the picture is first asked for, so that nothing of it delays the icon's registration.
        std::function<MenuBarIcon()> makeIcon;
    };

    /// Whether panels are told of a new tooltip at once, or later: they may show it there and then if the pointer rests
    /// on the icon.
    enum class Announcements { Prompt, Held };

    /// Exports the item on `bus`, which shows no other. `menu` outlives it.
    StatusNotifierItem(QDBusConnection bus, Description description, const QMenu& menu, QObject* parent = nullptr);
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    [[nodiscard]] const Description& description() const { return description_; }

    [[nodiscard]] const MenuBarIcon& icon();

    /// Plain text: the tooltip, and the description of the icon for those who can't see it.
    void setToolTip(const QString& text);

    [[nodiscard]] const QString& toolTip() const { return toolTip_; }

    void setAnnouncements(Announcements announcements);

    /// Keeps what a panel gave for the click that it tells of next, if it is no longer than a token may be.
    void setActivationToken(const QString& token);

    /// Uses that token up; empty if there is none.
    QString takeActivationToken() { return std::exchange(activationToken_, {}); }

Q_SIGNALS:
    /// The user wants the item's window. `position` is where, in native pixels of the whole desktop, or (0, 0) from a
    /// panel that doesn't know. `activationToken` lets the window come to the front; it may be empty. Both are a peer's
    /// word.
    void activated(QPoint position, const QString& activationToken);
    void toolTipChanged();
    /// A panel that doesn't draw the menu itself wants it shown at `position`, as for `activated`.
    void contextMenuRequested(QPoint position);

private:
    void announce();

    QDBusConnection bus_;
    Description description_;
    std::optional<MenuBarIcon> icon_;
    DBusMenu menu_;
    QString activationToken_;
    QString toolTip_;
    Announcements announcements_ = Announcements::Prompt;
    bool isAnnounced_ = true;
};

} // namespace quorvale::platform::desktop
