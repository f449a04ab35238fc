#pragma once

#include "platform/observable/ObservableObject.hpp"
#include "platform/queue/MainQueue.hpp"

#include <functional>

namespace quorvale::platform::observable {

/// Calls `observer` on `mainQueue`, when `object` has a new value to show, as long as the subscription lives. Changes
/// that come faster than a display shows them are one call, after the last of them. `mainQueue` outlives `object`. Main
/// thread.
Subscription objectDidChange(ObservableObject& object, queue::MainQueue& mainQueue, std::function<void()> observer);

} // namespace quorvale::platform::observable
