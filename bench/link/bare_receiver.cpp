#include "link/Receiver.hpp"

/// Takes pushes and does nothing about them: what the bus library and the message bus allow.
int main() {
    const quorvale::bench::Receiver receiver([](bool /*status*/) {});
    while (true) {
        quorvale::bench::turn(receiver.bus());
    }
}
