#pragma once

#include "agent_link/ClientCommunication.hpp"
#include "platform/connection/Connection.hpp"
#include "platform/log/Logger.hpp"
#include "platform/queue/MainQueue.hpp"
#include "status/StatusManager.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace quorvale::agent_link {

/// The link to the agent: at most one connection at a time, which registers the helper, asks for the agent's state and
/// takes the agent's pushes. It connects when told to and never by itself; an interruption or invalidation is logged
/// and nothing else.
class HelperXPC final : public ClientCommunication, public std::enable_shared_from_this<HelperXPC> {
public:
    /// How the agent knows the helper; the helper's bundle identifier.
    static constexpr std::string_view clientIdentity = "com.quorvale.QuorvaleHelper";

    /// The agent's name begins with the application group that it shares with the helper.
    static const platform::connection::ServiceAddress& agentService();

    /// What the link works with.
    struct Collaborators {
        platform::queue::MainQueue& mainQueue;
        const platform::log::Logger& logger;
        /// Makes a connection to the agent that is not started; may yield none.
        std::function<std::shared_ptr<platform::connection::Connection>()> makeConnection;
        /// Blocks the calling thread for the duration.
        std::function<void(std::chrono::seconds)> sleep;
        /// Resolves the status manager; asked at most once, at the first use, on any thread.
        std::function<std::shared_ptr<status::StatusManager>()> statusManager;
    };

    /// The instance of the process, created on first use without a connection. `app` wires it.
    static const std::shared_ptr<HelperXPC>& shared();

    /// Held by `std::shared_ptr` only: queued work and connections keep it alive.
    explicit HelperXPC(Collaborators collaborators);

    /// The current connection, also when it is dead by now; empty until the first `connectToAgent` and after one that
    /// yielded none. Main thread.
    const std::shared_ptr<platform::connection::Connection>& clientConnection() const { return clientConnection_; }

    /// Drops the connection there is and makes a new one. Blocks for one second first. Half a second after it has
    /// resumed, registers the helper and then asks for the agent's state. Main thread.
    void connectToAgent();

    /// Asks the agent for its state and applies the answer to the status, later. Main thread.
    void requestAgentState();

    void promptUserWithAboutFlow(Dictionary flow, std::string domain, std::string processName, std::string type,
                                 std::string id, double epoch) override;
    void updateProtectionStatus(bool isProtected) override;
    void updateRulesStatus(bool status) override;
    void updateEventLogDefaults(std::string defaults) override;
    void updateGeoDataDefaults(std::string defaults) override;
    void sendDefaultsToClientWith(Dictionary defaults) override;

    /// Registers the helper over `connection`, which is the one for which this was queued. Main thread.
    void registerClient(platform::connection::Connection& connection);

    /// Any thread.
    void handleAgentStateReply(const std::optional<std::string>& reply);

private:
    void configure(platform::connection::Connection& connection);
    status::StatusManager& statusManager();

    const Collaborators with_;
    std::shared_ptr<platform::connection::Connection> clientConnection_;
    std::once_flag statusManagerResolved_;
    std::shared_ptr<status::StatusManager> statusManager_;
};

} // namespace quorvale::agent_link
