#include "platform/application/Application.hpp"

#include "platform/desktop/ActivationToken.hpp"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace quorvale::platform::application {

namespace {

int terminationRequested = -1;

void requestTermination(int /*signal*/) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(terminationRequested, &one, sizeof one);
}

/// The toolkit aborts when there is no display to open; a core dump would tell nobody anything.
void reportMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtFatalMsg) {
        std::quick_exit(EXIT_FAILURE);
    }
}

QString objectPath(const QString& identifier) {
    return u'/' + QString(identifier).replace(u'.', u'/').replace(u'-', u'_');
}

constexpr auto interfaceName = "org.freedesktop.Application";
const auto activationToken = QStringLiteral("activation-token");

} // namespace

class Application::Session final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    Session(int& argc, char** argv, const std::string& identifier)
        : identifier_(QString::fromStdString(identifier)), application_(argc, argv) {
        QApplication::setDesktopFileName(identifier_);
        QApplication::setApplicationName(identifier_);
        QApplication::setQuitOnLastWindowClosed(false);
        connect(&application_, &QCoreApplication::aboutToQuit, this, [this] { terminate(EXIT_SUCCESS); });
        watchSignals();
    }

    Instance claim() {
        const auto token = desktop::ActivationToken::takeOwn();
        auto bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) {
            return Instance::noSessionBus;
        }
        bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                    QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                    SLOT(busDisconnected()));
        bus.registerObject(objectPath(identifier_), this, QDBusConnection::ExportScriptableSlots);
        if (bus.registerService(identifier_)) {
            return Instance::first;
        }
        auto activate = QDBusMessage::createMethodCall(identifier_, objectPath(identifier_),
                                                       QLatin1String(interfaceName), QStringLiteral("Activate"));
        // Where nobody has the name, the bus would start one more that can't have it either.
        activate.setAutoStartService(false);
        QVariantMap platformData;
        if (!token.isEmpty()) {
            platformData.insert(activationToken, token);
        }
        activate << platformData;
        return bus.call(activate).type() == QDBusMessage::ErrorMessage ? Instance::nameRefused : Instance::anotherRuns;
    }

    [[noreturn]] void run() {
        QTimer::singleShot(0, this, [this] {
            if (delegate) {
                delegate->applicationDidFinishLaunching();
            }
        });
        terminate(QApplication::exec());
    }

    [[noreturn]] void terminate(int status) {
        if (auto* const told = std::exchange(delegate, nullptr)) {
            told->applicationWillTerminate();
        }
        // Runs no destructors, but has the log written out.
        std::quick_exit(status);
    }

    std::function<void()> onActivation;
    std::map<std::string, std::function<void()>> actions;
    std::function<void()> onSessionBusLoss;
    ApplicationDelegate* delegate = nullptr;

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

    void busDisconnected() {
        if (const auto handler = std::exchange(onSessionBusLoss, {})) {
            handler();
        }
    }

private:
    static desktop::ActivationToken tokenIn(const QVariantMap& platformData) {
        return desktop::ActivationToken(platformData.value(activationToken).toString());
    }

    void watchSignals() {
        terminationRequested = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        auto* const notifier = new QSocketNotifier(terminationRequested, QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, [this] { terminate(EXIT_SUCCESS); });
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
            std::signal(signal, requestTermination);
        }
        // Where nobody reads standard error any more, what is written there is lost, and no more.
        std::signal(SIGPIPE, SIG_IGN);
    }

    const QString identifier_;
    QApplication application_;
};

Application::Application(int& argc, char** argv, const std::string& identifier) {
    qInstallMessageHandler(reportMessage);
    session_ = std::make_unique<Session>(argc, argv, identifier);
}

Application::~Application() = default;

Instance Application::claimInstance() {
    return session_->claim();
}

void Application::setActivationHandler(std::function<void()> handler) {
    session_->onActivation = std::move(handler);
}

void Application::setActionHandler(const std::string& name, std::function<void()> handler) {
    session_->actions[name] = std::move(handler);
}

void Application::setSessionBusLossHandler(std::function<void()> handler) {
    session_->onSessionBusLoss = std::move(handler);
}

void Application::setDelegate(ApplicationDelegate& delegate) {
    session_->delegate = &delegate;
}

void Application::run() {
    session_->run();
}

void Application::terminate(int status) {
    session_->terminate(status);
}

} // namespace quorvale::platform::application

#include "Application.moc"
