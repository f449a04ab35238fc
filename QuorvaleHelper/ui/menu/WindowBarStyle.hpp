#pragma once

#include "platform/observable/ObservableObject.hpp"
#include "platform/queue/MainQueue.hpp"
#include "status/StatusManager.hpp"

#include <QWidget>

#include <functional>

namespace quorvale::ui::menu {

class ProtectedState;

/// The content of the window under the menu-bar icon: the indicator, and the buttons "Settings..." and "Quit" (also
/// Ctrl+Q). It shows `statusManager`'s status, and a new one as soon as it is assigned.
class WindowBarStyle final : public QWidget {
    Q_OBJECT

public:
    /// Points.
    static constexpr int columnWidth = 200;

    /// Main thread, each of them.
    struct Actions {
        /// Closes the window that presents this view; "Settings..." calls it before it opens the main application.
        std::function<void()> dismiss;
        std::function<void()> openMainApplication;
        std::function<void()> quitApplication;
    };

    /// `iconSize` is the edge length of the indicator's icon, in points. The references outlive the view.
    WindowBarStyle(status::StatusManager& statusManager, platform::queue::MainQueue& mainQueue, double iconSize,
                   Actions actions);

protected:
    void showEvent(QShowEvent* event) override;

private:
    ProtectedState* indicator_;
    platform::observable::Subscription statusChanges_;
};

} // namespace quorvale::ui::menu
