#include "app/QuorvaleHelperApp.hpp"

#include "agent_link/HelperXPC.hpp"
#include "app/ApplicationOperations.hpp"
#include "app/CommandLine.hpp"
#include "app/HelperIdentity.hpp"
#include "app/StartUp.hpp"
#include "platform/bundle/Bundle.hpp"
#include "platform/log/UnifiedLog.hpp"
#include "platform/observable/objectDidChange.hpp"
#include "ui/common/localized.hpp"
#include "ui/logs/LogViewer.hpp"
#include "ui/logs/UnifiedLogReader.hpp"
#include "ui/menu/ProtectedState.hpp"
#include "ui/menu/SystemColors.hpp"
#include "ui/menu/WindowBarStyle.hpp"
#include "ui/menu/protectedSymbol.hpp"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QLocale>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorvale::app {

namespace {

using platform::application::Application;
using platform::application::Instance;
using platform::application::Wish;
using platform::bundle::Bundle;
using platform::desktop::MenuBarExtra;
using platform::desktop::MenuBarIcon;
using platform::desktop::WindowScene;
using platform::observable::objectDidChange;
using platform::queue::MainQueue;
using ui::logs::LogStore;
using ui::menu::ProtectedLook;

constexpr int usageError = 2;
constexpr double iconSize = 18;
constexpr auto title = "Quorvale Helper";
constexpr auto logWindowIdentifier = "log-viewer";
constexpr QSize logWindowSize(720, 480);

std::string identifier() {
    return std::string(agent_link::HelperXPC::clientIdentity);
}

/// The image "MenuBarIcon", or the protected symbol where the bundle has none that can be read.
MenuBarIcon loadMenuBarIcon() {
    auto icon = MenuBarIcon::load(QString::fromStdString(Bundle::main().resourcePath("MenuBarIcon")));
    if (icon) {
        return *std::move(icon);
    }
    logger().error("Failed to load the menu bar icon: %{public}s", icon.error().toStdString());
    return MenuBarIcon::fromSymbol(ProtectedLook::of(true).symbol, ui::menu::SystemColors::blue);
}

/// The windows get the same picture.
MenuBarIcon makeMenuBarIcon() {
    auto icon = loadMenuBarIcon();
    QGuiApplication::setWindowIcon(icon.icon());
    return icon;
}

void loadTexts() {
    const auto loaded = ui::common::loadLocalizedTexts(QString::fromStdString(Bundle::main().resourcesPath()),
                                                       QLocale::system().uiLanguages());
    if (!loaded) {
        logger().error("Failed to load the texts: %{public}s", loaded.error().toStdString());
    }
}

std::shared_ptr<LogStore> logStore() {
    return std::make_shared<LogStore>(LogStore::Collaborators{
        .subsystems = {LogSubsystems::of(Bundle::main()).own, filterSubsystem(), helperSubsystem()},
        .logger = logger(),
        .reader = std::make_unique<ui::logs::UnifiedLogReader>(platform::log::UnifiedLog::shared().store())});
}

} // namespace

void QuorvaleHelperApp::main(int argc, char** argv) {
    const auto line = CommandLine::parse(std::span(argv, static_cast<std::size_t>(argc)));
    if (!line) {
        std::fprintf(stderr, "QuorvaleHelper: unknown argument: %s\n", line.error().c_str());
        std::exit(usageError);
    }
    if (line->request != CommandLine::Request::run) {
        const auto text = line->request == CommandLine::Request::help ? helpText() : versionText();
        std::fputs(text.c_str(), stdout);
        std::exit(std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    Application application(argc, argv, identifier());
    switch (application.claimInstance(line->background ? Wish::toRun : Wish::toSee)) {
    case Instance::first:
        break;
    case Instance::anotherRuns:
        application.terminate();
    case Instance::anotherHangs:
        logger().error("Failed to start: the helper that already runs does not answer");
        application.terminate(EXIT_FAILURE);
    case Instance::noSessionBus:
        logger().error("Failed to start: there is no session bus");
        application.terminate(EXIT_FAILURE);
    case Instance::nameRefused:
        logger().error("Failed to start: the session bus refuses the name, and no other instance answers");
        application.terminate(EXIT_FAILURE);
    }
    QuorvaleHelperApp helper(application);
    loadTexts();
    helper.makeLogWindow();
    helper.showMenuBarExtra();
    application.run();
}

QuorvaleHelperApp::QuorvaleHelperApp(Application& application)
    : logStore_(logStore),
      statusListener_([] { return status::StatusManager::shared(); }),
      application_(application),
      colorScheme_(QDBusConnection::sessionBus()) {
    application_.setDelegate(appDelegate_);
    application_.setFailureHandler([](const std::string& why) { logger().error("%{public}s", why); });
    startUp([&application] { application.terminate(); });
}

void QuorvaleHelperApp::makeLogWindow() {
    logWindow_ = std::make_unique<WindowScene>(WindowScene::Description{
        .title = ui::common::localized("Log"), .initialSize = logWindowSize, .makeContent = [this] {
            return new ui::logs::LogViewer(*logStore_.get(), MainQueue::shared(), [this] { logWindow_->dismiss(); });
        }});
    openWindow_ = [this](std::string_view identifier) {
        if (identifier == logWindowIdentifier) {
            logWindow_->open();
        }
    };
    application_.setActionHandler(logWindowIdentifier, [this] { openWindow_(logWindowIdentifier); });
}

void QuorvaleHelperApp::showMenuBarExtra() {
    auto& statusManager = *statusListener_.get();
    auto& mainQueue = MainQueue::shared();
    const auto bus = QDBusConnection::sessionBus();
    const ui::menu::WindowBarStyle::Actions actions{
        .dismiss = [this] { menuBarExtra_->dismiss(); },
        .openMainApplication = [] { openMainApplication(); },
        .quitApplication = [this] { application_.terminate(); },
    };
    const std::vector<MenuBarExtra::MenuSection> menu{
        {{QStringLiteral("Settings..."),
          [actions] {
              actions.dismiss();
              actions.openMainApplication();
          }},
         {logWindow_->title(), [this] { openWindow_(logWindowIdentifier); }}},
        {{QStringLiteral("Quit"), actions.quitApplication}}};
    menuBarExtra_ = std::make_unique<MenuBarExtra>(
        bus,
        platform::desktop::StatusNotifierItem::Description{QString::fromStdString(identifier()),
                                                           QString::fromLatin1(title), makeMenuBarIcon},
        menu);
    auto& extra = *menuBarExtra_;
    QObject::connect(&extra, &MenuBarExtra::failed,
                     [](const QString& what) { logger().error("%{public}s", what.toStdString()); });
    extra.setContent([&statusManager, &mainQueue, actions] {
        return std::make_unique<ui::menu::WindowBarStyle>(statusManager, mainQueue, iconSize, actions);
    });
    auto showStatus = [&extra, &statusManager, shown = std::optional<bool>()]() mutable {
        const auto status = statusManager.status();
        if (std::exchange(shown, status) != status) {
            const auto look = ProtectedLook::of(status);
            extra.setStatus(look.text, ui::menu::protectedSymbol(look));
        }
    };
    showStatus();
    statusUpdates_ = objectDidChange(statusManager, mainQueue, std::move(showStatus));
    application_.setActivationHandler([&extra] { extra.show(); });
}

} // namespace quorvale::app
