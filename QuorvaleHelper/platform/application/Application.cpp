#include "platform/application/Application.hpp"

#include "platform/desktop/windows/ActivationToken.hpp"
#include "platform/desktop/windows/WindowSystem.hpp"
#include "platform/log/Logger.hpp"
#include "platform/log/UnifiedLog.hpp"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QEvent>
#include <QLoggingCategory>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dbus/dbus.h>
#include <fcntl.h>
#include <malloc.h>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace quorvale::platform::application {

namespace {

/// The one way out of the process. Any thread: whoever comes second waits for the end that the first one brings.
class Door {
public:
    std::atomic<ApplicationDelegate*> delegate = nullptr;
    std::function<void(const std::string&)> onFailure;
    std::atomic<const log::Logger*> toolkitLogger = nullptr;

    [[noreturn]] void leave(int status) {
        tell();
        // Threads may be at work with what destructors would destroy.
        std::quick_exit(status);
    }

    [[noreturn]] void leaveFailing(const std::string& why) {
        mutex_.lock();
        if (onFailure) {
            onFailure(why);
        }
        leave(EXIT_FAILURE);
    }

    /// For a library's call of `exit`, in which `quick_exit`, and with it the log's own handler, may not run any more.
    [[noreturn]] void leaveFromExit() {
        tell();
        log::UnifiedLog::shared().flush(log::UnifiedLog::longestFlushAtTheEnd);
        std::_Exit(EXIT_SUCCESS);
    }

private:
    void tell() {
        mutex_.lock();
        if (auto* const told = delegate.exchange(nullptr)) {
            told->applicationWillTerminate();
        }
    }

    /// Never unlocked; what is said at the end may itself find a reason to end.
    std::recursive_mutex mutex_;
};

Door& door() {
    static auto& instance = *new Door;
    return instance;
}

/// Else the first that libraries open would take the place of the standard ones that the process was started without,
/// and get what is written there: the session bus would get the log, and hang up.
void openMissingStandardDescriptors() {
    int descriptor = -1;
    do {
        descriptor = ::open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor > STDERR_FILENO) {
        ::close(descriptor);
    }
}

int terminationRequested = -1;

void requestTermination(int /*signal*/) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(terminationRequested, &one, sizeof one);
}

/// Takes what the toolkit has to say, which is the last that is heard of it when the display ends: on X11 it then
/// calls `exit`, on Wayland `_exit`. To watch the connection ourselves would be a race with it.
void reportMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    const auto begins = [&](const char* text) { return message.startsWith(QLatin1String(text)); };
    const bool isFatal = type == QtFatalMsg || begins("The Wayland connection experienced a fatal error");
    const auto* const logger = door().toolkitLogger.load();
    if (!logger) {
        // Whoever starts the program reads this; later a reader who stops must not stop us.
        std::fprintf(stderr, "%s\n", qPrintable(message));
    } else if (!isFatal) {
        const auto text = message.toStdString();
        type == QtCriticalMsg ? logger->error("%{public}s", text) : logger->info("%{public}s", text);
    }
    if (begins("The X11 connection broke") || begins("The Wayland connection broke")) {
        door().leave(EXIT_SUCCESS);
    }
    if (isFatal) {
        // The toolkit would abort; a core dump would tell nobody anything.
        door().leaveFailing("The toolkit failed: " + message.toStdString());
    }
}

QLoggingCategory::CategoryFilter applyUsersRules = nullptr;

/// The user's logging rules may silence the toolkit, but we need its warnings.
void keepWarnings(QLoggingCategory* category) {
    // To be installed, this goes over what the rules were already applied to.
    if (applyUsersRules) {
        applyUsersRules(category);
    }
    if (std::string_view(category->categoryName()) == "default") {
        category->setEnabled(QtWarningMsg, true);
    }
}

/// The library stops reading while 63 MiB of what it has read wait to be dealt with, and goes on from the thread that
/// deals with them. The toolkit can't: it reads on a thread of its own, and would never hear from the bus again.
void readHoweverMuchWaits(const QDBusConnection& bus) {
    dbus_connection_set_max_received_size(static_cast<DBusConnection*>(bus.internalPointer()), LONG_MAX);
}

/// The end of the desktop session arrives as a wish to quit.
class Toolkit final : public QApplication {
public:
    using QApplication::QApplication;

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::Quit) {
            // Qt would ask the windows first, one of which may refuse to close just then.
            door().leave(EXIT_SUCCESS);
        }
        return QApplication::event(event);
    }
};

QString objectPath(const QString& identifier) {
    return u'/' + QString(identifier).replace(u'.', u'/').replace(u'-', u'_');
}

constexpr int largestKeptBlock = 128 << 10;
/// Panels have drawn the icon by then.
constexpr std::chrono::seconds settled{5};

/// In which an instance that runs has answered, also from within its pause before it connects.
constexpr int answerLimit = 2000; // milliseconds
constexpr auto interfaceName = "org.freedesktop.Application";
const auto activationToken = QStringLiteral("activation-token");
const auto startupId = QStringLiteral("desktop-startup-id");

} // namespace

class Application::Session final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    Session(int& argc, char** argv, const std::string& identifier)
        : identifier_(QString::fromStdString(identifier)),
          leave_(desktop::ActivationToken::takeOwn()),
          application_(argc, argv) {
        QApplication::setDesktopFileName(identifier_);
        QApplication::setApplicationName(identifier_);
        QApplication::setQuitOnLastWindowClosed(false);
        // Whatever starts it with the session does so with the next one.
        const auto neverRestart = [](QSessionManager& manager) {
            manager.setRestartHint(QSessionManager::RestartNever);
        };
        connect(&application_, &QApplication::commitDataRequest, this, neverRestart, Qt::DirectConnection);
        connect(&application_, &QApplication::saveStateRequest, this, neverRestart, Qt::DirectConnection);
    }

    Instance claim(Wish wish) {
        auto bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) {
            return Instance::noSessionBus;
        }
        readHoweverMuchWaits(bus);
        bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                    QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                    SLOT(busDisconnected()));
        bus.registerObject(objectPath(identifier_), this, QDBusConnection::ExportScriptableSlots);
        const bool isToBeSeen = wish == Wish::toSee && !application_.isSessionRestored();
        const QDeadlineTimer deadline(answerLimit);
        while (true) {
            const auto claimed = bus.interface()->registerService(identifier_);
            if (claimed.isValid() && claimed.value() == QDBusConnectionInterface::ServiceRegistered) {
                return Instance::first;
            }
            if (const auto other = isToBeSeen ? activateOther(bus, deadline) : otherThatRuns(bus)) {
                return *other;
            }
            if (!claimed.isValid() || deadline.hasExpired()) {
                return Instance::nameRefused;
            }
            // The one that had the name has just ended.
        }
    }

    void setDelegate(ApplicationDelegate& delegate) {
        door().toolkitLogger = new log::Logger(identifier_.toStdString() + ".toolkit", "default");
        door().delegate = &delegate;
        watchSignals();
        // Other libraries call it when their own connection to the display breaks.
        std::atexit([] { door().leaveFromExit(); });
    }

    [[noreturn]] void run() {
        QTimer::singleShot(0, this, [] {
            if (auto* const delegate = door().delegate.load()) {
                delegate->applicationDidFinishLaunching();
            }
        });
        // What the start took and no longer needs: the process would keep it for as long as it lives.
        QTimer::singleShot(settled, [] { malloc_trim(0); });
        door().leave(QApplication::exec());
    }

    std::function<void()> onActivation;
    std::map<std::string, std::function<void()>> actions;

public Q_SLOTS:

    Q_SCRIPTABLE void Activate(const QVariantMap& platformData) {
        const auto token = tokenIn(platformData);
        if (onActivation) {
            onActivation();
        }
    }

    Q_SCRIPTABLE void Open(const QStringList& /*uris*/, const QVariantMap& /*platformData*/) {
        sendErrorReply(QDBusError::NotSupported, QStringLiteral("There is nothing to open."));
    }

    Q_SCRIPTABLE void ActivateAction(const QString& name, const QVariantList& /*parameter*/,
                                     const QVariantMap& platformData) {
        const auto action = actions.find(name.toStdString());
        if (action == actions.end()) {
            sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("There is no action %1.").arg(name));
            return;
        }
        const auto token = tokenIn(platformData);
        action->second();
    }

private Q_SLOTS:

    void busDisconnected() { door().leaveFailing("The session bus went away"); }

private:
    static desktop::ActivationToken tokenIn(const QVariantMap& platformData) {
        const auto token = platformData.value(activationToken).toString();
        const auto id = platformData.value(startupId).toString();
        const bool isX11 = desktop::windowSystem() == desktop::WindowSystem::X11;
        const bool prefersId = isX11 ? !id.isEmpty() : token.isEmpty();
        return desktop::ActivationToken(prefersId ? id : token);
    }

    /// No value if nobody has the name.
    [[nodiscard]] std::optional<Instance> otherThatRuns(const QDBusConnection& bus) const {
        return bus.interface()->isServiceRegistered(identifier_) ? std::optional(Instance::anotherRuns) : std::nullopt;
    }

    /// No value if nobody has the name, or the one that had it ended without an answer.
    [[nodiscard]] std::optional<Instance> activateOther(const QDBusConnection& bus,
                                                        const QDeadlineTimer& deadline) const {
        auto activate = QDBusMessage::createMethodCall(identifier_, objectPath(identifier_),
                                                       QLatin1String(interfaceName), QStringLiteral("Activate"));
        // Where nobody has the name, the bus would start one more that can't have it either.
        activate.setAutoStartService(false);
        QVariantMap platformData;
        for (const auto& [key, value] : {std::pair(activationToken, leave_.token), {startupId, leave_.startupId}}) {
            if (!value.isEmpty()) {
                platformData.insert(key, value);
            }
        }
        activate << platformData;
        const auto timeout = std::max<qint64>(deadline.remainingTime(), 1);
        const auto reply = bus.call(activate, QDBus::Block, static_cast<int>(timeout));
        if (reply.type() != QDBusMessage::ErrorMessage) {
            return Instance::anotherRuns;
        }
        const QDBusError error(reply);
        if (error.type() == QDBusError::NoReply) {
            return deadline.hasExpired() ? std::optional(Instance::anotherHangs) : std::nullopt;
        }
        const bool isGone = error.type() == QDBusError::ServiceUnknown ||
                            error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
        return isGone ? std::nullopt : std::optional(Instance::nameRefused);
    }

    void watchSignals() {
        terminationRequested = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        auto* const notifier = new QSocketNotifier(terminationRequested, QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, [] { door().leave(EXIT_SUCCESS); });
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
            if (std::signal(signal, requestTermination) == SIG_IGN) {
                // As nohup wants it.
                std::signal(signal, SIG_IGN);
            }
        }
        // Where nobody reads standard error any more, what is written there is lost, and no more.
        std::signal(SIGPIPE, SIG_IGN);
    }

    const QString identifier_;
    const desktop::ActivationToken::Own leave_;
    Toolkit application_;
};

Application::Application(int& argc, char** argv, const std::string& identifier) {
    openMissingStandardDescriptors();
    // Left alone, the C library raises this limit to the largest block that was ever freed. What the log window frees,
    // tens of MiB at every closing, would then stay with the process.
    mallopt(M_MMAP_THRESHOLD, largestKeptBlock);
    qInstallMessageHandler(reportMessage);
    applyUsersRules = QLoggingCategory::installFilter(keepWarnings);
    session_ = std::make_unique<Session>(argc, argv, identifier);
}

Application::~Application() = default;

Instance Application::claimInstance(Wish wish) {
    return session_->claim(wish);
}

void Application::setActivationHandler(std::function<void()> handler) {
    session_->onActivation = std::move(handler);
}

void Application::setActionHandler(const std::string& name, std::function<void()> handler) {
    session_->actions[name] = std::move(handler);
}

void Application::setFailureHandler(std::function<void(const std::string&)> handler) {
    door().onFailure = std::move(handler);
}

void Application::setDelegate(ApplicationDelegate& delegate) {
    session_->setDelegate(delegate);
}

void Application::run() {
    session_->run();
}

void Application::terminate(int status) {
    door().leave(status);
}

} // namespace quorvale::platform::application

#include "Application.moc"
