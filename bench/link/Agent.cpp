#include "link/Agent.hpp"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace quorvale::bench {

const sd_bus_vtable Agent::methods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("registerClientWith", "s", "", &Agent::onRegistration, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD(stateMethod, "", "as", &Agent::onStateRequest, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

Agent::Agent() {
    check(sd_bus_add_object_vtable(bus_.get(), nullptr, agentPath, agentInterface, methods, this));
    check(sd_bus_request_name(bus_.get(), agentName, 0));
}

std::string Agent::waitForClient() {
    while (clients_.empty()) {
        turn(bus_);
    }
    auto client = std::move(clients_.front());
    clients_.pop_front();
    return client;
}

void Agent::push(const std::string& client, bool status) {
    check(sd_bus_call_method_async(bus_.get(), nullptr, client.c_str(), helperPath, helperInterface, pushMethod,
                                   &Agent::onAnswer, this, "b", static_cast<int>(status)));
    ++unanswered_;
}

void Agent::waitForAnswers() {
    while (unanswered_ > 0) {
        turn(bus_);
    }
}

std::chrono::duration<double> Agent::flood(const std::string& client, std::size_t count, std::size_t window) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t sent = 0; sent < count; ++sent) {
        while (unanswered_ >= window) {
            turn(bus_);
        }
        push(client, sent % 2 == 0);
    }
    waitForAnswers();
    return std::chrono::steady_clock::now() - start;
}

void Agent::serve() {
    while (true) {
        turn(bus_);
    }
}

int Agent::onRegistration(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    static_cast<Agent*>(self)->clients_.emplace_back(sd_bus_message_get_sender(call));
    return sd_bus_reply_method_return(call, "");
}

int Agent::onStateRequest(sd_bus_message* call, void* /*self*/, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(call, "as", 1, R"({"active":false})");
}

int Agent::onAnswer(sd_bus_message* answer, void* self, sd_bus_error* /*error*/) {
    if (sd_bus_message_is_method_error(answer, nullptr) != 0) {
        std::fprintf(stderr, "a push failed: %s\n", sd_bus_message_get_error(answer)->message);
        std::_Exit(EXIT_FAILURE);
    }
    --static_cast<Agent*>(self)->unanswered_;
    return 0;
}

} // namespace quorvale::bench
