#include "status/StatusManager.hpp"

namespace quorvale::status {

const std::shared_ptr<StatusManager>& StatusManager::shared() {
    // Never destroyed: a connection may hand over a status while the process ends.
    static const auto& instance = *new auto(std::make_shared<StatusManager>(platform::queue::MainQueue::shared()));
    return instance;
}

StatusManager::StatusManager(platform::queue::MainQueue& mainQueue) : mainQueue_(mainQueue), status_(*this, false) {}

void StatusManager::setStatus(bool value) {
    mainQueue_.async([self = shared_from_this(), value] { self->status_.set(value); });
}

} // namespace quorvale::status
