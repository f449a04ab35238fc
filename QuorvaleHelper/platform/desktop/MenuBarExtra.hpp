#pragma once

#include "platform/desktop/status_icon/StatusIcon.hpp"
#include "platform/desktop/windows/PanelWindow.hpp"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>
#include <memory>

namespace quorvale::platform::desktop {

/// An icon in the desktop's panel with a window of the program's under it. GUI thread.
class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    /// `bus` is the session bus, and carries one extra; the icon goes when the connection does.
    MenuBarExtra(const QDBusConnection& bus, StatusNotifierItem::Description description, QObject* parent = nullptr);

    using MakeContent = std::function<std::unique_ptr<QWidget>()>;

    /// What the window shows from its next opening on. It is made then: most sessions never open the window.
    void setContent(MakeContent makeContent);

    /// A word or two that follow the title in the tooltip and in the icon's description. Plain text.
    void setStatusText(const QString& text);

    /// Opens the window at `anchor`, the place of the icon in logical pixels of the whole desktop, or dismisses it.
    void toggle(QPoint anchor);
    /// Opens the window where it was last, at first in the corner where panels have their icons.
    void show();
    void dismiss();

    [[nodiscard]] bool isShown() const;

Q_SIGNALS:
    /// A sentence for the log.
    void failed(const QString& what);

private:
    void open(QPoint anchor);

    const QString title_;
    StatusIcon icon_;
    PanelWindow window_;
    MakeContent makeContent_;
    QPoint lastAnchor_;
};

} // namespace quorvale::platform::desktop
