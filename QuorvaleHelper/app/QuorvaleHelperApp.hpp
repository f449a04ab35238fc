#pragma once

#include "app/AppDelegate.hpp"
#include "platform/desktop/MenuBarExtra.hpp"
#include "platform/desktop/appearance/ColorSchemeFollower.hpp"
#include "platform/desktop/windows/WindowScene.hpp"
#include "platform/observable/ObservableObject.hpp"
#include "platform/observable/StateObject.hpp"
#include "status/StatusManager.hpp"
#include "ui/logs/LogStore.hpp"

#include <functional>
#include <memory>
#include <string_view>

namespace quorvale::app {

/// Opens the window with that identifier.
using OpenWindowAction = std::function<void(std::string_view identifier)>;

/// The menu-bar application: the objects that live as long as the process, and the scenes that show them. Main thread.
class QuorvaleHelperApp {
public:
    /// Runs the application. A second one in the same session activates the first and ends at once; with
    /// "--background", or restored by the session manager, it only ends. Whatever else the arguments ask for needs
    /// neither a display nor a bus; one that is not known ends the process with status 2.
    [[noreturn]] static void main(int argc, char** argv);

    /// Runs the start-up sequence.
    explicit QuorvaleHelperApp(platform::application::Application& application);

private:
    void makeLogWindow();
    void showMenuBarExtra();

    OpenWindowAction openWindow_;
    platform::observable::StateObject<ui::logs::LogStore> logStore_;
    platform::observable::StateObject<status::StatusManager> statusListener_;
    AppDelegate appDelegate_;

    platform::application::Application& application_;
    platform::desktop::ColorSchemeFollower colorScheme_;
    std::unique_ptr<platform::desktop::WindowScene> logWindow_;
    std::unique_ptr<platform::desktop::MenuBarExtra> menuBarExtra_;
    platform::observable::Subscription statusUpdates_;
};

} // namespace quorvale::app
