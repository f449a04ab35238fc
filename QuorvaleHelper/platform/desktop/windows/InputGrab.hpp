#pragma once

class QWindow;

namespace quorvale::platform::desktop {

/// Takes pointer and keyboard for `window`, which is on screen, until it is hidden or they are released; false as long
/// as another client holds either of them. On X11 it waits for the server's answers. GUI thread.
bool grabInput(QWindow& window);

void releaseInput(QWindow& window);

} // namespace quorvale::platform::desktop
