#include "link/BareClient.hpp"

#include <array>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace quorvale::bench {

BareClient::BareClient()
    : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread_([this](const std::stop_token& stop) { run(stop); }) {}

BareClient::~BareClient() {
    thread_.request_stop();
    wake();
    thread_.join();
    ::close(wakeUp_);
}

void BareClient::requestState(Reply reply) {
    {
        const std::scoped_lock lock(mutex_);
        wanted_ = std::move(reply);
    }
    wake();
}

void BareClient::wake() const {
    check(::eventfd_write(wakeUp_, 1));
}

void BareClient::run(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        Reply reply;
        {
            const std::scoped_lock lock(mutex_);
            reply = std::exchange(wanted_, {});
        }
        if (reply) {
            asked_ = std::move(reply);
            check(sd_bus_call_method_async(bus_.get(), nullptr, agentName, agentPath, agentInterface, stateMethod,
                                           &BareClient::onReply, this, ""));
        }
        if (check(sd_bus_process(bus_.get(), nullptr)) > 0) {
            continue;
        }
        const auto events = static_cast<short>(check(sd_bus_get_events(bus_.get())));
        std::array<pollfd, 2> files{{{sd_bus_get_fd(bus_.get()), events, 0}, {wakeUp_, POLLIN, 0}}};
        ::poll(files.data(), files.size(), -1);
        if (eventfd_t count = 0; files[1].revents != 0) {
            ::eventfd_read(wakeUp_, &count);
        }
    }
}

int BareClient::onReply(sd_bus_message* answer, void* self, sd_bus_error* /*error*/) {
    check(sd_bus_message_enter_container(answer, 'a', "s"));
    const char* text = nullptr;
    const auto isThere = check(sd_bus_message_read(answer, "s", &text)) > 0;
    static_cast<BareClient*>(self)->asked_(isThere ? std::optional<std::string>(text) : std::nullopt);
    return 0;
}

} // namespace quorvale::bench
