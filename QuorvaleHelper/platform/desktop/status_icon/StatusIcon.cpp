#include "platform/desktop/status_icon/StatusIcon.hpp"

#include "platform/desktop/windows/PanelPlacement.hpp"
#include "platform/desktop/windows/WindowSystem.hpp"

#include <QCursor>
#include <QGuiApplication>
#include <QSystemTrayIcon>
#include <QTimerEvent>

#include <utility>
#include <vector>

namespace quorvale::platform::desktop {

namespace {

QPoint anchorFor(QPoint panelsWord) {
    if (windowSystem() == WindowSystem::Wayland) {
        // Nobody else knows where the pointer is.
        return panelsWord;
    }
    std::vector<ScreenGeometry> screens;
    for (const auto* screen : QGuiApplication::screens()) {
        screens.push_back(ScreenGeometry::of(*screen));
    }
    return anchorPoint(panelsWord, panelActivation(), QCursor::pos(), screens);
}

} // namespace

StatusIcon::StatusIcon(const QDBusConnection& bus, StatusNotifierItem::Description description, QMenu& menu,
                       QObject* parent)
    : QObject(parent), menu_(menu), item_(bus, std::move(description), menu), host_(bus) {
    connect(&item_, &StatusNotifierItem::contextMenuRequested, this, [this](QPoint position) {
        // A Wayland client can't place a menu that no window of its own is under; panels there draw it themselves.
        if (windowSystem() == WindowSystem::X11) {
            // Not over the icon, where the next click would choose an item.
            const auto anchor = anchorFor(position);
            menu_.popup(panelTopLeft(anchor, menu_.sizeHint(), ScreenGeometry::at(anchor)));
            // Qt asks but once, and the panel may still hold the button then.
            menuGrab_.take();
        }
    });
    connect(&menu_, &QMenu::aboutToHide, &menuGrab_, &InputGrab::release);
    connect(&menuGrab_, &InputGrab::clickedElsewhere, &menu_, &QMenu::close);
    connect(&menuGrab_, &InputGrab::pressedTooEarly, &menu_, [this](QPoint place) {
        if (!menu_.geometry().contains(place)) {
            menu_.close();
        }
    });
    connect(&item_, &StatusNotifierItem::activated, this,
            [this](QPoint position, const QString& token) { Q_EMIT activated(anchorFor(position), token); });
    connect(&host_, &StatusNotifierHostWatch::hostChanged, this, &StatusIcon::followHost);
    connect(&host_, &StatusNotifierHostWatch::answered, this, [this] {
        if (std::exchange(isGraceOver_, false) && host_.host() == StatusNotifierHostWatch::Host::Absent) {
            showInSystemTray();
        }
    });
    connect(&host_, &StatusNotifierHostWatch::failed, this, &StatusIcon::failed);
}

StatusIcon::~StatusIcon() = default;

void StatusIcon::setToolTip(const QString& text) {
    item_.setToolTip(text);
    if (trayIcon_) {
        trayIcon_->setToolTip(text);
    }
}

void StatusIcon::timerEvent(QTimerEvent* event) {
    if (event->timerId() != absence_.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    absence_.stop();
    isGraceOver_ = true;
    host_.ask();
}

void StatusIcon::followHost() {
    absence_.stop();
    isGraceOver_ = false;
    switch (host_.host()) {
    case StatusNotifierHostWatch::Host::Unknown:
        break;
    case StatusNotifierHostWatch::Host::Present:
        trayIcon_.reset();
        break;
    case StatusNotifierHostWatch::Host::Absent:
        if (!trayIcon_ && windowSystem() == WindowSystem::X11) {
            absence_.start(static_cast<int>(std::chrono::milliseconds(hostGrace).count()), this);
        }
        break;
    }
}

// Qt decides once, when it is first asked for a tray icon, whether to use status notifier items of its own, and waits
// for the watcher to answer. Here there is no watcher, or it answered this moment that it has no host, so the wait is
// short, and Qt takes the X11 tray for good.
void StatusIcon::showInSystemTray() {
    trayIcon_ = std::make_unique<QSystemTrayIcon>(item_.icon().icon());
    trayIcon_->setToolTip(item_.toolTip());
    trayIcon_->setContextMenu(&menu_);
    connect(trayIcon_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        // A double click has already been a click.
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::MiddleClick) {
            const auto place = trayIcon_->geometry();
            Q_EMIT activated(place.isValid() ? place.center() : QCursor::pos(), {});
        }
    });
    trayIcon_->show();
}

} // namespace quorvale::platform::desktop
