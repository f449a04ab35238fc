#pragma once

#include "platform/desktop/MenuBarIcon.hpp"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>
#include <QString>

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
        MenuBarIcon icon;
    };

    /// Exports the item on `bus`, which shows no other.
    StatusNotifierItem(QDBusConnection bus, Description description, QObject* parent = nullptr);
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    [[nodiscard]] const Description& description() const { return description_; }

    /// Plain text: the tooltip, and the description of the icon for those who can't see it.
    void setToolTip(const QString& text);

    [[nodiscard]] const QString& toolTip() const { return toolTip_; }

Q_SIGNALS:
    /// The user wants the item's window. `position` is where, in native pixels of the whole desktop, or (0, 0) from a
    /// panel that doesn't know. `activationToken` lets the window take the focus on Wayland; it may be empty. Both
    /// are a peer's word.
    void activated(QPoint position, const QString& activationToken);
    void toolTipChanged();

private:
    QDBusConnection bus_;
    Description description_;
    QString toolTip_;
};

} // namespace quorvale::platform::desktop
