#pragma once

#include "link/Bus.hpp"

#include <chrono>
#include <cstddef>
#include <deque>
#include <string>

namespace quorvale::bench {

/// The agent as fast as the bus library lets it be, on the thread that made it.
class Agent {
public:
    /// Takes the agent's name on the system bus.
    Agent();
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    /// Waits for the next client to register: its name on the bus.
    std::string waitForClient();

    /// Sends one status and returns when it is on its way.
    void push(const std::string& client, bool status);

    /// Waits until every push is answered.
    void waitForAnswers();

    /// Sends statuses, each other than the one before, as long as fewer than `window` are without an answer. Returns
    /// how long all took to be answered.
    std::chrono::duration<double> flood(const std::string& client, std::size_t count, std::size_t window);

    /// Answers requests until the process is ended.
    [[noreturn]] void serve();

private:
    static int onRegistration(sd_bus_message* call, void* self, sd_bus_error* error);
    static int onStateRequest(sd_bus_message* call, void* self, sd_bus_error* error);
    static int onAnswer(sd_bus_message* answer, void* self, sd_bus_error* error);
    static const sd_bus_vtable methods[];

    Bus bus_ = systemBus();
    std::deque<std::string> clients_;
    std::size_t unanswered_ = 0;
};

} // namespace quorvale::bench
