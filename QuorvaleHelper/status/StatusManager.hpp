#pragma once

#include "platform/observable/ObservableObject.hpp"
#include "platform/queue/MainQueue.hpp"

#include <memory>

namespace quorvale::status {

/// The protection status: the one value that the user interface shows, with every writer going through
/// `setStatus`.
class StatusManager final : public platform::observable::ObservableObject,
                            public std::enable_shared_from_this<StatusManager> {
public:
    /// The instance of the process, created on first use from whichever thread comes first.
    static const std::shared_ptr<StatusManager>& shared();

    /// Held by `std::shared_ptr` only: queued assignments keep it alive.
    explicit StatusManager(platform::queue::MainQueue& mainQueue);

    /// Whether protection is on; false until the first value is applied. Main thread.
    bool status() const { return status_.get(); }

    /// Applies `value` on the main queue and returns before it is applied. Any thread. Each call makes one
    /// change notification and one assignment, also when the value does not change.
    void setStatus(bool value);

private:
    platform::queue::MainQueue& mainQueue_;
    platform::observable::Published<bool> status_;
};

} // namespace quorvale::status
