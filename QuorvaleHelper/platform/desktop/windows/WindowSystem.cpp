#include "platform/desktop/windows/WindowSystem.hpp"

#include <QGuiApplication>

namespace quorvale::platform::desktop {

WindowSystem windowSystem() {
    const auto name = QGuiApplication::platformName();
    // There is a plugin for Wayland with EGL, too.
    return name == QLatin1String("xcb")                ? WindowSystem::X11
           : name.startsWith(QLatin1String("wayland")) ? WindowSystem::Wayland
                                                       : WindowSystem::Other;
}

} // namespace quorvale::platform::desktop
