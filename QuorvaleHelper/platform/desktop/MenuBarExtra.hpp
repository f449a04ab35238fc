#pragma once

#include "platform/desktop/status_icon/StatusIcon.hpp"
#include "platform/desktop/windows/PanelWindow.hpp"

#include <QDBusConnection>
#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorvale::platform::desktop {

/// An icon in the desktop's panel with a window of the program's under it, and with a menu that says the same for
/// panels that show it first, as some do for any click, and for touch. Where the program shows the menu itself, either
/// of the two goes when the other comes. GUI thread.
class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    /// One line of the menu, and what the user's choice of it does.
    struct MenuItem {
        QString label; ///< plain text
        std::function<void()> action;
    };

    /// The lines between two separators.
    using MenuSection = std::vector<MenuItem>;

    /// `bus` is the session bus, and carries one extra; the icon goes when the connection does. `menu` follows the
    /// menu's first line, which is the status and opens the window.
    MenuBarExtra(const QDBusConnection& bus, StatusNotifierItem::Description description,
                 const std::vector<MenuSection>& menu, QObject* parent = nullptr);

    using MakeContent = std::function<std::unique_ptr<QWidget>()>;

    /// What the window shows from its next opening on. It is made then: most sessions never open the window.
    void setContent(MakeContent makeContent);

    /// A word or two, plain text, that follow the title in the tooltip and in the icon's description, and are the first
    /// line of the menu with `symbol` beside them.
    void setStatus(const QString& text, const QIcon& symbol);

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
    QMenu menu_;
    QAction* const status_;
    StatusIcon icon_;
    PanelWindow window_;
    MakeContent makeContent_;
    std::optional<QPoint> lastAnchor_;
};

} // namespace quorvale::platform::desktop
