#pragma once

namespace quorvale::platform::desktop {

/// How the user has just activated an icon in a panel: no message of a panel's says it. Panels are known by their
/// windows' type. A desktop that draws its panels itself leaves it unknown, as a screen reader does that acts in the
/// user's place.
enum class PanelActivation {
    /// A button is down, or the pointer stands on a panel that hasn't got the keyboard.
    ByPointer,
    /// A panel has got the keyboard, which a click doesn't give it.
    ByKeyboard,
    Unknown,
};

/// As of now. Waits for the X server's answers; elsewhere than on X11 it is unknown. GUI thread.
PanelActivation panelActivation();

} // namespace quorvale::platform::desktop
