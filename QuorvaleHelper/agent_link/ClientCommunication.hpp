#pragma once

#include "platform/connection/Interface.hpp"

namespace quorvale::agent_link {

/// What the helper implements for the agent. The calls arrive on the connection's queue.
class ClientCommunication {
public:
    using Dictionary = platform::connection::Dictionary;

    virtual ~ClientCommunication() = default;

    virtual void promptUserWithAboutFlow(Dictionary flow, std::string domain, std::string processName, std::string type,
                                         std::string id, double epoch) = 0;
    virtual void updateProtectionStatus(bool isProtected) = 0;
    virtual void updateRulesStatus(bool status) = 0;
    virtual void updateEventLogDefaults(std::string defaults) = 0;
    virtual void updateGeoDataDefaults(std::string defaults) = 0;
    virtual void sendDefaultsToClientWith(Dictionary defaults) = 0;

    static const platform::connection::ExportedInterface<ClientCommunication>& interface();
};

} // namespace quorvale::agent_link
