#pragma once

#include "platform/log/Logger.hpp"
#include "platform/notification/DistributedNotificationCenter.hpp"

#include <functional>
#include <string>

namespace quorvale::app {

/// The name of the updater's notification, whose object is the JSON text of an `AppState`.
const std::string& updaterNotificationName();

/// What the updater can have done.
struct UpdaterActions {
    std::function<void()> connectToAgent;
    std::function<void()> quitApplication; ///< need not return
    std::function<void(bool)> setStatus;
};

/// Acts on one notification of the updater: connects, quits and hands on the status, in this order, as its flags say.
/// One without an object is ignored; one whose object is not an `AppState` is one error line. Main thread.
void handleUpdaterNotification(const platform::notification::Notification& notification, const UpdaterActions& actions,
                               const platform::log::Logger& logger);

} // namespace quorvale::app
