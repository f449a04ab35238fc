#include "agent_link/AgentCommunication.hpp"

namespace quorvale::agent_link {

const platform::connection::Interface& AgentCommunication::interface() {
    static const platform::connection::Interface table{
        "com.quorvale.AgentCommunication",
        {describe(registerClientWith), describe(updateSharedDefaultsWith), describe(updateGeoDefaults),
         describe(agentState), describe(reloadCloud)},
    };
    return table;
}

} // namespace quorvale::agent_link
