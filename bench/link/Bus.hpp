#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace quorvale::bench {

struct CloseBus {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};

using Bus = std::unique_ptr<sd_bus, CloseBus>;

Bus systemBus();
Bus sessionBus();

/// What a function of sd-bus gave; a failure ends the program with a message.
int check(int result);

/// Handles one message that is there already, or waits for something to come.
void turn(const Bus& bus);

/// The helper's end of the link.
inline constexpr auto helperPath = "/com/quorvale/QuorvaleHelper";
inline constexpr auto helperInterface = "com.quorvale.ClientCommunication";
inline constexpr auto pushMethod = "updateProtectionStatus";

/// The agent's end of it.
inline constexpr auto agentName = "QVL7T4M2XK.com.quorvale.QuorvaleFilter";
inline constexpr auto agentPath = "/com/quorvale/QuorvaleFilter";
inline constexpr auto agentInterface = "com.quorvale.AgentCommunication";
inline constexpr auto stateMethod = "agentState";

} // namespace quorvale::bench
