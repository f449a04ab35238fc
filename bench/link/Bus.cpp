#include "link/Bus.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace quorvale::bench {

int check(int result) {
    if (result < 0) {
        std::fprintf(stderr, "the message bus: %s\n", std::strerror(-result));
        std::_Exit(EXIT_FAILURE);
    }
    return result;
}

Bus systemBus() {
    sd_bus* bus = nullptr;
    check(sd_bus_open_system(&bus));
    return Bus(bus);
}

Bus sessionBus() {
    sd_bus* bus = nullptr;
    check(sd_bus_open_user(&bus));
    return Bus(bus);
}

void turn(const Bus& bus) {
    if (check(sd_bus_process(bus.get(), nullptr)) == 0) {
        check(sd_bus_wait(bus.get(), UINT64_MAX));
    }
}

} // namespace quorvale::bench
