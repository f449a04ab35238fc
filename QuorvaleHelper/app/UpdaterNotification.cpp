#include "app/UpdaterNotification.hpp"

#include "app/AppState.hpp"

#include <variant>

namespace quorvale::app {

using platform::notification::ForeignObject;

const std::string& updaterNotificationName() {
    static const std::string name = "QuorvaleHelper";
    return name;
}

void handleUpdaterNotification(const platform::notification::Notification& notification, const UpdaterActions& actions,
                               const platform::log::Logger& logger) {
    if (const auto* const foreign = std::get_if<ForeignObject>(&notification.object)) {
        logger.error("Failed to decode the updater's notification: %{public}s",
                     "its object is not text but of type \"" + foreign->signature + '"');
        return;
    }
    const auto* const text = std::get_if<std::string>(&notification.object);
    if (!text) {
        return;
    }
    const auto state = decodeAppState(*text);
    if (!state) {
        logger.error("Failed to decode the updater's notification: %{public}s", state.error().description());
        return;
    }
    if (state->restart) {
        actions.connectToAgent();
    }
    if (state->terminate) {
        logger.info("Updater: Terminating Helper");
        actions.quitApplication();
    }
    actions.setStatus(state->running);
    logger.info("Received notification: %{bool}d", state->running);
}

} // namespace quorvale::app
