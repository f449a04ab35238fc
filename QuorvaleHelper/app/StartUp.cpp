#include "app/StartUp.hpp"

#include "agent_link/HelperXPC.hpp"
#include "app/HelperIdentity.hpp"
#include "app/UpdaterNotification.hpp"

#include <utility>

namespace quorvale::app {

using agent_link::HelperXPC;
using platform::bundle::Bundle;
using platform::notification::DistributedNotificationCenter;

std::string versionLine(const Bundle& bundle) {
    return appVersion(bundle) + " (" + buildNumber(bundle) + ')';
}

void startUp(std::function<void()> quitApplication) {
    logger().info("Quorvale Helper Started...");
    logger().info("Version: %{public}s", versionLine(Bundle::main()));
    if (const auto& error = Bundle::main().infoError()) {
        logger().error("Failed to read the bundle's information: %{public}s", *error);
    }
    if (const auto& link = HelperXPC::shared(); link->clientConnection()) {
        link->requestAgentState();
    }
    const UpdaterActions actions{
        .connectToAgent = [] { HelperXPC::shared()->connectToAgent(); },
        .quitApplication = std::move(quitApplication),
        .setStatus = [](bool running) { status::StatusManager::shared()->setStatus(running); },
    };
    DistributedNotificationCenter::defaultCenter().addObserver(
        updaterNotificationName(),
        [actions](const auto& notification) { handleUpdaterNotification(notification, actions, logger()); });
}

} // namespace quorvale::app
