#pragma once

#include <string>

namespace quorvale::platform::workspace {

/// What the helper asks of the user's session.
class Workspace {
public:
    /// Has the program of the bundle at `bundlePath`, an absolute path, started and returns before it is. The user's
    /// service manager starts it as an application of its own, with this process's environment and the home directory
    /// as its current one: whatever confines or ends this process doesn't concern it. Where the session bus knows no
    /// such manager, it is started from here, in a session of its own and without standard streams. Nobody is told
    /// what came of it. Main thread.
    /// https://systemd.io/DESKTOP_ENVIRONMENTS/
    void openApplication(const std::string& bundlePath) const;
};

} // namespace quorvale::platform::workspace
