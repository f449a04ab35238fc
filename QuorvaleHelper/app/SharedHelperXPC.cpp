#include "agent_link/HelperXPC.hpp"
#include "app/HelperIdentity.hpp"

#include <thread>

namespace quorvale::agent_link {

const std::shared_ptr<HelperXPC>& HelperXPC::shared() {
    static const auto& instance = *new auto(std::make_shared<HelperXPC>(Collaborators{
        .mainQueue = platform::queue::MainQueue::shared(),
        .logger = app::logger(),
        .makeConnection = [] { return platform::connection::Connection::toService(agentService()); },
        .sleep = [](std::chrono::seconds duration) { std::this_thread::sleep_for(duration); },
        .statusManager = [] { return status::StatusManager::shared(); },
    }));
    return instance;
}

} // namespace quorvale::agent_link
