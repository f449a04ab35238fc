#include "support/BusPeer.hpp"

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <memory>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace quorvale::tests {

BusPeer::BusPeer(const std::string& address, CallHandler onCall)
    : onCall_(std::move(onCall)), wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    const char* name = nullptr;
    sd_bus_new(&bus_);
    sd_bus_set_address(bus_, address.c_str());
    sd_bus_set_bus_client(bus_, 1);
    if (sd_bus_start(bus_) < 0 || sd_bus_get_unique_name(bus_, &name) < 0) {
        ADD_FAILURE() << "no bus at " << address;
    } else {
        name_ = name;
    }
    if (onCall_) {
        const auto take = [](sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
            const auto isCall = sd_bus_message_is_method_call(message, nullptr, nullptr) > 0;
            if (isCall) {
                auto& peer = *static_cast<BusPeer*>(self);
                peer.onCall_(peer, message);
            }
            return int{isCall};
        };
        sd_bus_add_filter(bus_, nullptr, take, this);
    }
    thread_ = std::jthread([this] { serve(); });
}

BusPeer::~BusPeer() {
    post([this] { ending_ = true; });
    thread_.join();
    close(wake_);
}

void BusPeer::post(Work work) {
    const std::scoped_lock lock(mutex_);
    work_.push_back(std::move(work));
    eventfd_write(wake_, 1);
}

void BusPeer::run(Work work) {
    auto done = std::make_shared<std::promise<void>>();
    const auto finished = done->get_future();
    post([&, done] {
        work();
        sd_bus_call_method(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId",
                           nullptr, nullptr, "");
        done->set_value();
    });
    finished.wait();
}

void BusPeer::own(const std::string& name) {
    sd_bus_request_name_async(bus_, nullptr, name.c_str(), SD_BUS_NAME_REPLACE_EXISTING | SD_BUS_NAME_ALLOW_REPLACEMENT,
                              nullptr, nullptr);
}

void BusPeer::release(const std::string& name) {
    sd_bus_release_name_async(bus_, nullptr, name.c_str(), nullptr, nullptr);
}

void BusPeer::passOn(sd_bus_message* received, const Method& method) {
    auto* const message = messageTo(method);
    sd_bus_message_copy(message, received, 1);
    send(message, {});
}

sd_bus_message* BusPeer::messageTo(const Method& method) {
    sd_bus_message* message = nullptr;
    sd_bus_message_new_method_call(bus_, &message, method.destination.c_str(), method.path, method.interface,
                                   method.name);
    return message;
}

void BusPeer::send(sd_bus_message* message, Outcome outcome) {
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> owned(message, &sd_bus_message_unref);
    if (!outcome) {
        sd_bus_message_set_expect_reply(message, 0);
        sd_bus_send(bus_, message, nullptr);
        return;
    }
    const auto finish = [](sd_bus_message* reply, void* userdata, sd_bus_error* /*error*/) {
        const auto* const error = sd_bus_message_get_error(reply);
        (*static_cast<Outcome*>(userdata))(error != nullptr ? error->name : "");
        return 1;
    };
    auto kept = std::make_unique<Outcome>(std::move(outcome));
    sd_bus_slot* slot = nullptr;
    if (sd_bus_call_async(bus_, &slot, message, finish, kept.get(), UINT64_MAX) < 0) {
        (*kept)(SD_BUS_ERROR_DISCONNECTED);
        return;
    }
    sd_bus_slot_set_destroy_callback(slot, [](void* userdata) { delete static_cast<Outcome*>(userdata); });
    std::ignore = kept.release();
    sd_bus_slot_set_floating(slot, 1);
    sd_bus_slot_unref(slot);
}

void BusPeer::serve() {
    while (!takeWork()) {
        if (sd_bus_is_open(bus_) > 0 && sd_bus_process(bus_, nullptr) > 0) {
            continue;
        }
        std::array<pollfd, 2> events{
            {{.fd = wake_, .events = POLLIN, .revents = 0},
             {.fd = sd_bus_get_fd(bus_), .events = static_cast<short>(sd_bus_get_events(bus_)), .revents = 0}}};
        poll(events.data(), sd_bus_is_open(bus_) > 0 ? 2 : 1, -1);
    }
    sd_bus_close_unref(bus_);
}

/// Whether the peer is to end.
bool BusPeer::takeWork() {
    std::vector<Work> work;
    {
        const std::scoped_lock lock(mutex_);
        eventfd_t ignored = 0;
        eventfd_read(wake_, &ignored);
        work.swap(work_);
    }
    for (auto& piece : work) {
        piece();
    }
    return ending_;
}

} // namespace quorvale::tests
