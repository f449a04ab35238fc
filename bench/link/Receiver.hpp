#pragma once

#include "link/Bus.hpp"

#include <functional>

namespace quorvale::bench {

/// What the bus library alone does of the helper's work: registers with the agent, and takes and answers its pushes.
class Receiver {
public:
    explicit Receiver(std::function<void(bool)> onPush);
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    [[nodiscard]] const Bus& bus() const { return bus_; }

private:
    static int takePush(sd_bus_message* call, void* self, sd_bus_error* error);
    static const sd_bus_vtable methods[];

    std::function<void(bool)> onPush_;
    Bus bus_ = systemBus();
};

} // namespace quorvale::bench
