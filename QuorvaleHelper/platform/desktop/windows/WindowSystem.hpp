#pragma once

namespace quorvale::platform::desktop {

enum class WindowSystem { X11, Wayland, Other };

/// What the program's windows are on. GUI thread, once the application is there.
WindowSystem windowSystem();

} // namespace quorvale::platform::desktop
