#pragma once

#include <expected>
#include <string>

namespace quorvale::platform::workspace {

/// What the helper asks of the user's session.
class Workspace {
public:
    /// Starts the program of the bundle at `bundlePath` and does not wait for it. The program gets a session of
    /// its own, this process's environment, the home directory as its current one and no standard streams; it is
    /// no child of this process and outlives it. The failure is a text for the log. Any thread.
    [[nodiscard]] std::expected<void, std::string> openApplication(const std::string& bundlePath) const;
};

} // namespace quorvale::platform::workspace
