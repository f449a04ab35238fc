#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quorvale::platform::application {

/// Is told of the two ends of the application's life, once each.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;
    /// Main thread.
    virtual void applicationDidFinishLaunching() = 0;
    /// Nothing may be held back when it returns: there may be no chance to bring it out. Main thread, unless the
    /// toolkit fails on another.
    virtual void applicationWillTerminate() = 0;
};

/// Whether this process is the one instance of its session.
enum class Instance {
    first,
    anotherRuns,
    /// Another instance has the place and doesn't answer within two seconds.
    anotherHangs,
    noSessionBus,
    /// The session bus refuses the identifier as a name, and no other instance answers.
    nameRefused,
};

/// What whoever starts this process wants.
enum class Wish {
    /// That the application is there.
    toRun,
    /// The same, and to see it if it already is.
    toSee,
};

/// The graphical application: event loop, single instance, termination. One a process, made first, on the main thread.
///
/// On the session bus it owns its identifier as a name and answers to `org.freedesktop.Application`
/// (https://specifications.freedesktop.org/desktop-entry-spec/latest/dbus.html) at the object path made from it.
///
/// From the delegate's appointment on, whatever ends the application tells the delegate once and runs no destructor.
/// SIGTERM, SIGINT, SIGHUP, the end of the desktop session and that of the display end it with status 0, the loss of
/// the session bus and a failure of the toolkit with status 1. Session managers are told not to restore it. Until then
/// there is nothing to tell, and signals end it as they end any process. What the toolkit reports is logged under the
/// identifier followed by ".toolkit".
class Application {
public:
    /// `identifier` is a reverse-DNS name. A desktop that can't be reached ends the process with status 1 and the
    /// reason on standard error.
    Application(int& argc, char** argv, const std::string& identifier);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Takes the session's one place, or asks whoever has it to activate if that is the wish, for which the desktop's
    /// leave to come to the front is passed on. A session manager that restores a session has no such wish. Waits for
    /// the session bus and, at most two seconds, for the other instance.
    Instance claimInstance(Wish wish);

    /// `handler` runs when another process activates this one.
    void setActivationHandler(std::function<void()> handler);

    /// `handler` runs when another process asks for the action of that name, as a desktop entry's actions do.
    void setActionHandler(const std::string& name, std::function<void()> handler);

    /// `handler` runs once, just before the delegate hears of an end with status 1: a sentence for the log. On the
    /// delegate's thread.
    void setFailureHandler(std::function<void(const std::string&)> handler);

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
