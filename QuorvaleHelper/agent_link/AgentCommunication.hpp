#pragma once

#include "platform/connection/Interface.hpp"

namespace quorvale::agent_link {

/// What the agent implements. The helper calls `registerClientWith` and `agentState`.
struct AgentCommunication {
    using Dictionary = platform::connection::Dictionary;

    /// The client's identity.
    static constexpr platform::connection::OneWay<std::string> registerClientWith{"registerClientWith", {"identity"}};
    static constexpr platform::connection::Request<bool, Dictionary> updateSharedDefaultsWith{
        "updateSharedDefaultsWith", {"defaults"}};
    static constexpr platform::connection::Request<std::string> updateGeoDefaults{"updateGeoDefaults", {}};
    /// Answers with the state as the JSON text of an `AgentState`, or with nothing.
    static constexpr platform::connection::Request<std::optional<std::string>> agentState{"agentState", {}};
    static constexpr platform::connection::OneWay<> reloadCloud{"reloadCloud", {}};

    static const platform::connection::Interface& interface();
};

} // namespace quorvale::agent_link
