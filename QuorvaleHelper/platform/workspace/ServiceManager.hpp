#pragma once

#include <functional>
#include <string>

namespace quorvale::platform::workspace {

/// A program to start as an application of its own.
struct ApplicationStart {
    /// A reverse-DNS name, or whatever else the program is known by.
    std::string identifier;
    std::string executable;
    std::string workingDirectory;
};

/// Asks the user's service manager, by the session bus, to run a program as a unit of its own, with this process's
/// environment. `onAbsence` runs later if the bus knows no such manager. Main thread.
/// https://www.freedesktop.org/software/systemd/man/latest/org.freedesktop.systemd1.html
void startAsUnit(const ApplicationStart& start, std::function<void()> onAbsence);

} // namespace quorvale::platform::workspace
