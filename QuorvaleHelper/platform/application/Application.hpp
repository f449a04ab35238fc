#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quorvale::platform::application {

/// Is told of the two ends of the application's life. Main thread.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;
    virtual void applicationDidFinishLaunching() = 0;
    virtual void applicationWillTerminate() = 0;
};

/// Whether this process is the one instance of its session.
enum class Instance {
    first,
    anotherRuns,
    noSessionBus,
    /// The session bus refuses the identifier as a name, and no other instance answers.
    nameRefused,
};

/// The graphical application: event loop, single instance, termination. One a process, made first, on the main thread.
///
/// On the session bus it owns its identifier as a name and answers to `org.freedesktop.Application`
/// (https://specifications.freedesktop.org/desktop-entry-spec/latest/dbus.html) at the object path made from it.
/// SIGTERM, SIGINT, SIGHUP and the end of the desktop session terminate it in order.
class Application {
public:
    /// `identifier` is a reverse-DNS name. A desktop that can't be reached ends the process with status 1 and the
    /// reason on standard error.
    Application(int& argc, char** argv, const std::string& identifier);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Takes the session's one place, or asks whoever has it to activate, for which the desktop's leave to take the
    /// focus is passed on.
    Instance claimInstance();

    /// `handler` runs when another process activates this one.
    void setActivationHandler(std::function<void()> handler);

    /// `handler` runs when another process asks for the action of that name, as a desktop entry's actions do.
    void setActionHandler(const std::string& name, std::function<void()> handler);

    /// `handler` runs once, when the session bus goes away.
    void setSessionBusLossHandler(std::function<void()> handler);

    /// Not owned.
    void setDelegate(ApplicationDelegate& delegate);

    /// Runs the event loop, in which the delegate first hears of the launch. Does not return.
    [[noreturn]] void run();

    /// Tells the delegate and ends the process with `status`. Nothing is closed or destroyed: a connection's thread may
    /// be at work with what would be.
    [[noreturn]] void terminate(int status = 0);

private:
    class Session;
    std::unique_ptr<Session> session_;
};

} // namespace quorvale::platform::application
