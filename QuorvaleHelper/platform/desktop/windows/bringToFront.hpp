#pragma once

class QWidget;

namespace quorvale::platform::desktop {

/// Shows `window`, a top-level one, in front of all others and gives it the focus of the keyboard, so far as the window
/// manager lets it: with the activation token alive, and on X11 as of the time that it names or else of now, since
/// whoever calls this does so for the user. On Wayland a window that has no token is shown anew. GUI thread.
/// https://specifications.freedesktop.org/wm-spec/latest/
void bringToFront(QWidget& window);

} // namespace quorvale::platform::desktop
