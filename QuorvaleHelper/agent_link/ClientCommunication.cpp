#include "agent_link/ClientCommunication.hpp"

namespace quorvale::agent_link {

const platform::connection::ExportedInterface<ClientCommunication>& ClientCommunication::interface() {
    using platform::connection::OneWay;
    using Client = ClientCommunication;
    static const auto table =
        platform::connection::ExportedInterface<Client>("com.quorvale.ClientCommunication")
            .method(
                OneWay<Dictionary, std::string, std::string, std::string, std::string, double>{
                    "promptUserWithAboutFlow", {"flow", "domain", "processName", "type", "id", "epoch"}},
                &Client::promptUserWithAboutFlow)
            .method(OneWay<bool>{"updateProtectionStatus", {"isProtected"}}, &Client::updateProtectionStatus)
            .method(OneWay<bool>{"updateRulesStatus", {"status"}}, &Client::updateRulesStatus)
            .method(OneWay<std::string>{"updateEventLogDefaults", {"defaults"}}, &Client::updateEventLogDefaults)
            .method(OneWay<std::string>{"updateGeoDataDefaults", {"defaults"}}, &Client::updateGeoDataDefaults)
            .method(OneWay<Dictionary>{"sendDefaultsToClientWith", {"defaults"}}, &Client::sendDefaultsToClientWith);
    return table;
}

} // namespace quorvale::agent_link
