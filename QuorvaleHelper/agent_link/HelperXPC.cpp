#include "agent_link/HelperXPC.hpp"

#include "agent_link/AgentCommunication.hpp"
#include "status/AgentState.hpp"

#include <utility>

namespace quorvale::agent_link {

namespace {

using platform::connection::Connection;
using platform::queue::MainQueue;
using namespace std::chrono_literals;

constexpr auto pauseBeforeConnecting = 1s;
constexpr auto delayAfterResume = 500ms;

} // namespace

const platform::connection::ServiceAddress& HelperXPC::agentService() {
    static const platform::connection::ServiceAddress address{
        .name = "QVL7T4M2XK.com.quorvale.QuorvaleFilter",
        .objectPath = "/com/quorvale/QuorvaleFilter",
        .clientObjectPath = "/com/quorvale/QuorvaleHelper",
    };
    return address;
}

HelperXPC::HelperXPC(Collaborators collaborators) : with_(std::move(collaborators)) {}

void HelperXPC::connectToAgent() {
    with_.logger.info("Helper XPC: Attempting to connect to agent");
    with_.sleep(pauseBeforeConnecting);
    if (clientConnection_) {
        with_.logger.info("Helper XPC: Invalidating existing connection");
        clientConnection_->invalidate();
        clientConnection_.reset();
    }
    clientConnection_ = with_.makeConnection();
    if (!clientConnection_) {
        with_.logger.info("Helper XPC: Failed to connect to agent");
        return;
    }
    configure(*clientConnection_);
    with_.logger.info("Helper XPC: resuming XPC connection");
    clientConnection_->resume();
    with_.logger.info("Helper XPC: Connection resumed");

    with_.mainQueue.asyncAfter(
        MainQueue::Clock::now() + delayAfterResume,
        [self = shared_from_this(), connection = clientConnection_] { self->registerClient(*connection); });
    with_.mainQueue.asyncAfter(MainQueue::Clock::now() + delayAfterResume,
                               [self = shared_from_this()] { self->requestAgentState(); });
}

void HelperXPC::configure(Connection& connection) {
    connection.setRemoteObjectInterface(AgentCommunication::interface());
    connection.setExportedInterface(ClientCommunication::interface(),
                                    std::static_pointer_cast<ClientCommunication>(shared_from_this()));
    connection.setInvalidationHandler([&logger = with_.logger] { logger.info("Helper XPC: Connection invalidated"); });
    connection.setInterruptionHandler([&logger = with_.logger] { logger.info("Helper XPC: Connection interrupted"); });
}

void HelperXPC::registerClient(Connection& connection) {
    const auto agent = connection.remoteObjectProxyWithErrorHandler([&logger = with_.logger](const auto& error) {
        logger.error("Failed to register client with agent: %s", error.localizedDescription());
    });
    if (!agent.implements(AgentCommunication::interface())) {
        with_.logger.error("Failed to cast register client remote object proxy");
        return;
    }
    agent.send(AgentCommunication::registerClientWith, std::string(clientIdentity));
}

void HelperXPC::requestAgentState() {
    if (clientConnection_) {
        const auto agent = clientConnection_->remoteObjectProxyWithErrorHandler(
            [&logger = with_.logger](const auto& error) { logger.error("Error creating provider proxy: %@", error); });
        if (agent.implements(AgentCommunication::interface())) {
            agent.send(AgentCommunication::agentState,
                       [self = shared_from_this()](const auto& reply) { self->handleAgentStateReply(reply); });
            return;
        }
    }
    with_.logger.error("Failed to create a remote object proxy for the provider");
}

void HelperXPC::handleAgentStateReply(const std::optional<std::string>& reply) {
    if (!reply) {
        return;
    }
    const auto active = status::decodeAgentState(*reply);
    if (!active) {
        with_.logger.error("Failed to decode the agent state: %{public}s", active.error().description());
        return;
    }
    with_.logger.info("Initial State Changed: %{bool}d", *active);
    statusManager().setStatus(*active);
}

void HelperXPC::updateProtectionStatus(bool isProtected) {
    with_.logger.info("Helper: Agent State: %{bool}d", isProtected);
    statusManager().setStatus(isProtected);
}

void HelperXPC::promptUserWithAboutFlow(Dictionary /*flow*/, std::string /*domain*/, std::string /*processName*/,
                                        std::string /*type*/, std::string /*id*/, double /*epoch*/) {}

void HelperXPC::updateRulesStatus(bool /*status*/) {}

void HelperXPC::updateEventLogDefaults(std::string /*defaults*/) {}

void HelperXPC::updateGeoDataDefaults(std::string /*defaults*/) {}

void HelperXPC::sendDefaultsToClientWith(Dictionary /*defaults*/) {}

status::StatusManager& HelperXPC::statusManager() {
    std::call_once(statusManagerResolved_, [this] { statusManager_ = with_.statusManager(); });
    return *statusManager_;
}

} // namespace quorvale::agent_link
