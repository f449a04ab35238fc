#pragma once

#include "link/Bus.hpp"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace quorvale::bench {

/// Asks for the agent's state with the bus library alone, on a thread that has the connection to itself.
class BareClient {
public:
    using Reply = std::function<void(std::optional<std::string>)>;

    BareClient();
    ~BareClient();
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    /// `reply` runs on the thread of the connection. Any thread; one request at a time.
    void requestState(Reply reply);

private:
    static int onReply(sd_bus_message* answer, void* self, sd_bus_error* error);
    void run(const std::stop_token& stop);
    void wake() const;

    Bus bus_ = systemBus();
    int wakeUp_;
    std::mutex mutex_;
    Reply wanted_;
    Reply asked_;
    std::jthread thread_;
};

} // namespace quorvale::bench
