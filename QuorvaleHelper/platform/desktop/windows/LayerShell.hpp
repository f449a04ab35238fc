#pragma once

#include "platform/desktop/windows/PanelPlacement.hpp"

class QWindow;

namespace quorvale::platform::desktop {

/// The next time that `window`, an ordinary one of a Wayland desktop that isn't on screen, is shown, it stands at
/// `place`, above the others and beside the panels, in no list of windows; it gets the keyboard when the user turns to
/// it. False, and the compositor places it, where the compositor hasn't got the layer-shell protocol, as GNOME's
/// hasn't, or this program was built without it. The library for it is loaded with the first call. GUI thread.
/// https://wayland.app/protocols/wlr-layer-shell-unstable-v1
bool standOnLayer(QWindow& window, const LayerPlace& place);

/// The same for a window that is to cover all of its screen that the panels leave free, below those that stand at a
/// place; it never gets the keyboard.
bool coverOnLayer(QWindow& window);

} // namespace quorvale::platform::desktop
