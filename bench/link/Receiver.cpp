#include "link/Receiver.hpp"

#include <utility>

namespace quorvale::bench {

const sd_bus_vtable Receiver::methods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD(pushMethod, "b", "", &Receiver::takePush, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

Receiver::Receiver(std::function<void(bool)> onPush) : onPush_(std::move(onPush)) {
    check(sd_bus_add_object_vtable(bus_.get(), nullptr, helperPath, helperInterface, methods, this));
    check(sd_bus_call_method_async(bus_.get(), nullptr, agentName, agentPath, agentInterface, "registerClientWith",
                                   nullptr, nullptr, "s", "baseline"));
}

int Receiver::takePush(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    int status = 0;
    if (const auto result = sd_bus_message_read(call, "b", &status); result < 0) {
        return result;
    }
    static_cast<Receiver*>(self)->onPush_(status != 0);
    return sd_bus_reply_method_return(call, "");
}

} // namespace quorvale::bench
