#include "platform/desktop/MenuBarExtra.hpp"

#include "platform/desktop/windows/ActivationToken.hpp"
#include "platform/desktop/windows/PanelPlacement.hpp"
#include "platform/desktop/windows/WindowSystem.hpp"

#include <QAction>
#include <QCursor>
#include <QGuiApplication>

#include <utility>

namespace quorvale::platform::desktop {

namespace {

PanelWindow::Presentation presentation() {
    return windowSystem() == WindowSystem::Wayland ? PanelWindow::Presentation::PlacedByCompositor
                                                   : PanelWindow::Presentation::AnchoredPopup;
}

/// A single ampersand would mark the key that chooses the line.
QString plainText(const QString& text) {
    return QString(text).replace(u'&', QLatin1String("&&"));
}

QAction* fill(QMenu& menu, const std::vector<MenuBarExtra::MenuSection>& sections) {
    auto* const status = menu.addAction(QString());
    for (const auto& section : sections) {
        menu.addSeparator();
        for (const auto& [label, action] : section) {
            menu.addAction(plainText(label), action);
        }
    }
    return status;
}

} // namespace

MenuBarExtra::MenuBarExtra(const QDBusConnection& bus, StatusNotifierItem::Description description,
                           const std::vector<MenuSection>& menu, QObject* parent)
    : QObject(parent),
      title_(description.title),
      status_(fill(menu_, menu)),
      icon_(bus, std::move(description), menu_),
      window_(presentation()) {
    window_.setWindowTitle(title_);
    // Each takes pointer and keyboard for itself: one that lost them to the other would not go by a click elsewhere.
    connect(&menu_, &QMenu::aboutToShow, this, &MenuBarExtra::dismiss);
    connect(status_, &QAction::triggered, this, [this] {
        // The pointer is on the menu then, and so at the icon. On Wayland it isn't known.
        if (windowSystem() == WindowSystem::Wayland) {
            show();
        } else {
            open(QCursor::pos());
        }
    });
    connect(&icon_, &StatusIcon::failed, this, &MenuBarExtra::failed);
    connect(&icon_, &StatusIcon::activated, this, [this](QPoint anchor, const QString& activationToken) {
        const ActivationToken token(activationToken);
        toggle(anchor);
    });
    connect(&window_, &PanelWindow::visibilityChanged, this, [this](bool isVisible) {
        // The tooltip would lie over the window, which says the same.
        icon_.setAnnouncements(isVisible ? StatusNotifierItem::Announcements::Held
                                         : StatusNotifierItem::Announcements::Prompt);
    });
}

void MenuBarExtra::setContent(MakeContent makeContent) {
    makeContent_ = std::move(makeContent);
}

void MenuBarExtra::setStatus(const QString& text, const QIcon& symbol) {
    icon_.setToolTip(QStringLiteral("%1: %2").arg(title_, text));
    status_->setText(plainText(text));
    status_->setIcon(symbol);
}

void MenuBarExtra::toggle(QPoint anchor) {
    if (isShown()) {
        dismiss();
    } else if (!window_.wasJustDismissedByFocusLoss()) {
        open(anchor);
    }
}

void MenuBarExtra::show() {
    const auto screen = ScreenGeometry::of(*QGuiApplication::primaryScreen());
    open(lastAnchor_.value_or(iconCorner(screen, QGuiApplication::layoutDirection())));
}

void MenuBarExtra::dismiss() {
    window_.dismiss();
}

bool MenuBarExtra::isShown() const {
    return window_.isVisible();
}

void MenuBarExtra::open(QPoint anchor) {
    menu_.close();
    lastAnchor_ = anchor;
    if (const auto makeContent = std::exchange(makeContent_, {})) {
        window_.setContent(makeContent());
    }
    window_.open(anchor);
}

} // namespace quorvale::platform::desktop
