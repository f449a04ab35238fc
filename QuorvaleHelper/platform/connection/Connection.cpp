#include "platform/connection/Connection.hpp"

#include "platform/connection/Coding.hpp"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <mutex>
#include <poll.h>
#include <pthread.h>
#include <set>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quorvale::platform::connection {

namespace {

constexpr auto busName = "org.freedesktop.DBus";

struct Release {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }

    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

template <typename Object>
using Handle = std::unique_ptr<Object, Release>;

std::string_view textOf(const char* text) {
    return text ? text : "";
}

std::string_view senderOf(sd_bus_message* message) {
    return textOf(sd_bus_message_get_sender(message));
}

bool isError(sd_bus_message* answer) {
    return sd_bus_message_is_method_error(answer, nullptr) > 0;
}

/// Whether a one-way message came back. Any answer of the peer, and its end before it gave one, tells that it arrived.
bool isUndelivered(sd_bus_message* answer) {
    return isError(answer) && senderOf(answer) == busName &&
           sd_bus_message_is_method_error(answer, SD_BUS_ERROR_NO_REPLY) == 0;
}

/// None when the system bus doesn't take a connection at once. Nothing is received, and no message sent, before the
/// connection is first processed; the library gives it up when the bus doesn't greet it then.
Handle<sd_bus> openSystemBus() {
    const auto* const chosen = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    Handle<sd_bus> handle(bus);
    const bool isOpening = bus &&
                           sd_bus_set_address(bus, chosen ? chosen : "unix:path=/run/dbus/system_bus_socket") >= 0 &&
                           sd_bus_set_bus_client(bus, 1) >= 0 &&
                           // No method has a descriptor among its arguments.
                           sd_bus_negotiate_fds(bus, 0) >= 0 && sd_bus_start(bus) >= 0;
    return isOpening ? std::move(handle) : nullptr;
}

} // namespace

/// The connection's thread and what lives on it. One loop takes what was posted and what the bus has sent, one at a
/// time, so that there is one order of all of it. Everything but `post` is called on that thread.
class Channel {
public:
    using Work = std::move_only_function<void()>;

    /// None when the system bus, or the means for a thread, can't be had.
    static std::shared_ptr<Channel> toService(const ServiceAddress& address) {
        auto channel = std::unique_ptr<Channel>(new Channel(address));
        if (!channel->bus_ || channel->wakeUp_ < 0 || !channel->watchService()) {
            return nullptr;
        }
        try {
            std::thread([channel = channel.get()] { channel->run(); }).detach();
        } catch (const std::system_error&) {
            return nullptr;
        }
        return {channel.release(), [](Channel* last) {
                    last->post([last] {
                        last->with_.onInvalidation = {};
                        last->becomeInvalid();
                        last->isRetired_ = true;
                    });
                }};
    }

    ~Channel() { ::close(wakeUp_); }

    /// Runs `work` on the connection's thread, after everything that was posted before. Any thread.
    void post(Work work) {
        const std::scoped_lock lock(mutex_);
        posted_.push_back(std::move(work));
        ::eventfd_write(wakeUp_, 1);
    }

    void resume(Configuration configuration) {
        with_ = std::move(configuration);
        isResumed_ = true;
        if (!bus_) {
            becomeInvalid();
        }
    }

    void send(const std::string& interface, const Method& method, const std::vector<Value>& arguments,
              const ErrorHandler& onError, const std::function<void(Value)>& onReply) {
        if (!bus_) {
            onError(disconnected());
            return;
        }
        const auto appendArguments = [&](sd_bus_message* message) {
            return std::ranges::all_of(arguments, [&](const auto& argument) { return append(message, argument); });
        };
        const auto sent =
            call(address_.name, address_.objectPath, interface, std::string(method.name), appendArguments);
        if (!sent) {
            onError({SD_BUS_ERROR_FAILED, "The message can't be sent."});
            return;
        }
        const auto onAnswer = [type = method.reply, onError, onReply](sd_bus_message* answer) {
            if (type ? isError(answer) : isUndelivered(answer)) {
                const auto* const error = sd_bus_message_get_error(answer);
                onError({std::string(textOf(error->name)), std::string(textOf(error->message))});
            } else if (auto value = type ? read(answer, *type) : std::nullopt;
                       value && sd_bus_message_at_end(answer, 1) > 0) {
                onReply(*std::move(value));
            } else if (type) {
                onError({SD_BUS_ERROR_INVALID_SIGNATURE, "The reply does not decode."});
            }
        };
        pending_[*sent] = {onAnswer, onError, !method.reply};
        if (!method.reply) {
            forgetDelivered();
        }
    }

    void becomeInvalid() {
        bus_.reset();
        answers_.clear();
        for (const auto& [serial, message] : std::exchange(pending_, {})) {
            message.onEnd(disconnected());
        }
        if (const auto handler = std::exchange(with_, {}).onInvalidation) {
            handler();
        }
    }

private:
    /// A message that was sent: what takes its answer, an error too, and what takes the end of the connection before.
    struct Pending {
        std::function<void(sd_bus_message*)> onAnswer;
        ErrorHandler onEnd;
        bool isOneWay;
    };

    explicit Channel(ServiceAddress address) : address_(std::move(address)), bus_(openSystemBus()) {}

    static Error disconnected() { return {SD_BUS_ERROR_DISCONNECTED, "The connection was invalidated."}; }

    void run() {
        ::pthread_setname_np(::pthread_self(), "agent link");
        while (!isRetired_) {
            const auto processed = bus_ && isResumed_ ? sd_bus_process(bus_.get(), nullptr) : 0;
            if (processed < 0) {
                becomeInvalid();
            } else if (processed == 0) {
                sendAnswers();
                wait();
            }
            for (auto& work : takePosted()) {
                work();
            }
        }
        delete this;
    }

    std::vector<Work> takePosted() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(posted_, {});
    }

    /// Until something was posted, or the bus has something or takes something.
    void wait() const {
        std::array descriptors{pollfd{wakeUp_, POLLIN, 0}, pollfd{-1, 0, 0}};
        int limit = -1;
        if (bus_ && isResumed_) {
            descriptors[1] = {sd_bus_get_fd(bus_.get()), static_cast<short>(sd_bus_get_events(bus_.get())), 0};
            // The library has a time limit to look at until it is let in, and the end to tell of.
            limit = sd_bus_is_ready(bus_.get()) > 0 ? -1 : sd_bus_is_open(bus_.get()) > 0 ? 1000 : 0;
        }
        ::poll(descriptors.data(), descriptors.size(), limit);
        if (eventfd_t count = 0; descriptors[0].revents != 0) {
            ::eventfd_read(wakeUp_, &count);
        }
    }

    /// Makes the questions after the service's owner the first messages on the bus.
    bool watchService() {
        const auto rule =
            "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + address_.name + '\'';
        if (sd_bus_add_filter(bus_.get(), nullptr, receive, this) < 0) {
            return false;
        }
        askBus("AddMatch", "s", rule, [this](sd_bus_message* answer) {
            if (isError(answer)) {
                becomeInvalid();
            }
        });
        askBus("GetNameOwner", "s", address_.name, [this](sd_bus_message* answer) {
            const char* owner = nullptr;
            if (!isError(answer) && sd_bus_message_read(answer, "s", &owner) > 0) {
                setOwner(owner);
                return;
            }
            askBus("StartServiceByName", "su", address_.name, [this](sd_bus_message* refusal) {
                if (isError(refusal) && owner_.empty()) {
                    becomeInvalid();
                }
            });
        });
        return bus_ != nullptr;
    }

    /// Calls a method of the bus itself, with flags of 0 where `types` has them.
    void askBus(const char* method, const char* types, const std::string& argument,
                std::function<void(sd_bus_message*)> onAnswer) {
        const auto sent = call(busName, "/org/freedesktop/DBus", busName, method, [&](sd_bus_message* message) {
            return sd_bus_message_append(message, types, argument.c_str(), 0U) >= 0;
        });
        if (sent) {
            pending_[*sent] = {std::move(onAnswer), [](const Error& /*error*/) {}, false};
        } else {
            becomeInvalid();
        }
    }

    /// Sends a call that is to be answered: its serial number, which grows. None when it can't be sent.
    std::optional<std::uint64_t> call(const std::string& service, const std::string& path, const std::string& interface,
                                      const std::string& method, std::predicate<sd_bus_message*> auto appendArguments) {
        sd_bus_message* message = nullptr;
        sd_bus_message_new_method_call(bus_.get(), &message, service.c_str(), path.c_str(), interface.c_str(),
                                       method.c_str());
        const Handle<sd_bus_message> handle(message);
        std::uint64_t serial = 0;
        const bool isSent = message && appendArguments(message) && sd_bus_send(bus_.get(), message, &serial) >= 0;
        return isSent ? std::optional(serial) : std::nullopt;
    }

    /// Takes whatever the bus has sent, in its order. 0 leaves a message to the library, which answers calls of
    /// org.freedesktop.DBus.Peer and refuses other calls.
    static int receive(sd_bus_message* message, void* channel, sd_bus_error* /*error*/) noexcept {
        auto& self = *static_cast<Channel*>(channel);
        if (sd_bus_message_is_method_call(message, nullptr, nullptr) > 0) {
            return self.receiveCall(message);
        }
        const char* owner = nullptr;
        if (sd_bus_message_is_signal(message, busName, "NameOwnerChanged") == 0) {
            self.receiveAnswer(message);
            // Another process can address a signal of any name to us; only the bus itself is believed.
        } else if (senderOf(message) == busName && sd_bus_message_read(message, "sss", nullptr, nullptr, &owner) > 0) {
            self.setOwner(owner);
        }
        return 1;
    }

    /// The bus deals with messages in their order: when it names an owner, it has delivered every one-way message that
    /// was sent before, or has sent it back already. Without an owner it may keep them for a service that it starts.
    void forgetDelivered() {
        askBus("GetNameOwner", "s", address_.name, [this, end = pending_.rbegin()->first](sd_bus_message* answer) {
            std::erase_if(pending_, [&](const auto& sent) {
                return !isError(answer) && sent.first <= end && sent.second.isOneWay;
            });
        });
    }

    void setOwner(const char* owner) {
        const auto previous = std::exchange(owner_, owner);
        if (pending_.empty()) {
            peers_.clear();
        } else {
            forgetDelivered();
        }
        peers_.insert(owner_);
        if (!previous.empty() && previous != owner_ && with_.onInterruption) {
            with_.onInterruption();
        }
    }

    void receiveAnswer(sd_bus_message* answer) {
        std::uint64_t serial = 0;
        sd_bus_message_get_reply_cookie(answer, &serial);
        const auto message = pending_.find(serial);
        const auto sender = senderOf(answer);
        // A message may have reached a process that is no longer the owner, but none that never was.
        if (message != pending_.end() && (sender == busName || peers_.contains(sender))) {
            pending_.extract(message).mapped().onAnswer(answer);
        }
    }

    int receiveCall(sd_bus_message* call) {
        const auto interface = textOf(sd_bus_message_get_interface(call));
        if (sd_bus_message_get_path(call) != address_.clientObjectPath ||
            (!interface.empty() && interface != with_.exported.name)) {
            return 0;
        }
        if (owner_.empty() || senderOf(call) != owner_) {
            return answer(call, SD_BUS_ERROR_ACCESS_DENIED, "Only the owner of " + address_.name + " may call.");
        }
        const std::string member = sd_bus_message_get_member(call);
        const auto method = std::ranges::find(with_.exported.methods, member, &Method::name);
        if (method == with_.exported.methods.end()) {
            return answer(call, SD_BUS_ERROR_UNKNOWN_METHOD, "There is no method " + member + '.');
        }
        std::vector<Value> arguments;
        for (const auto& [name, type] : method->parameters) {
            auto value = read(call, type);
            if (!value) {
                return answer(call, SD_BUS_ERROR_INVALID_ARGS,
                              member + ": argument " + std::string(name) + " does not decode.");
            }
            arguments.push_back(*std::move(value));
        }
        if (sd_bus_message_at_end(call, 1) == 0) {
            return answer(call, SD_BUS_ERROR_INVALID_ARGS,
                          member + ": argument number " + std::to_string(arguments.size() + 1) + " does not decode.");
        }
        with_.handlers[static_cast<std::size_t>(method - with_.exported.methods.begin())](std::move(arguments));
        return answer(call);
    }

    /// Not sent at once: the library finds out by this that the bus has ended, and then reads no more, though there may
    /// be calls that the bus had passed on before.
    int answer(sd_bus_message* call, const char* error = nullptr, const std::string& why = {}) {
        if (sd_bus_message_get_expect_reply(call) > 0) {
            sd_bus_message* answer = nullptr;
            error ? sd_bus_message_new_method_errorf(call, &answer, error, "%s", why.c_str())
                  : sd_bus_message_new_method_return(call, &answer);
            answers_.emplace_back(answer);
        }
        return 1;
    }

    void sendAnswers() {
        for (const auto& answer : answers_) {
            sd_bus_send(bus_.get(), answer.get(), nullptr);
        }
        answers_.clear();
    }

    const ServiceAddress address_;
    const int wakeUp_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::mutex mutex_; ///< of `posted_`
    std::vector<Work> posted_;

    Configuration with_;
    bool isResumed_ = false;
    bool isRetired_ = false;
    std::string owner_;
    std::set<std::string, std::less<>> peers_; ///< who has owned the name while messages were on their way
    std::map<std::uint64_t, Pending> pending_;
    std::vector<Handle<sd_bus_message>> answers_; ///< to calls, in their order
    Handle<sd_bus> bus_;
};

void Proxy::post(Method method, std::vector<Value> arguments, std::function<void(Value)> reply) const {
    channel_->post([channel = channel_.get(), interface = std::string(interface_ ? interface_->name : ""),
                    method = std::move(method), arguments = std::move(arguments), onError = errorHandler_,
                    onReply = std::move(reply)] { channel->send(interface, method, arguments, onError, onReply); });
}

std::shared_ptr<Connection> Connection::toService(const ServiceAddress& address) {
    auto channel = Channel::toService(address);
    return channel ? std::make_shared<Connection>(std::move(channel)) : nullptr;
}

void Connection::resume() {
    channel_->post([channel = channel_.get(), configuration = std::exchange(configuration_, {})]() mutable {
        channel->resume(std::move(configuration));
    });
}

void Connection::invalidate() {
    channel_->post([channel = channel_.get()] { channel->becomeInvalid(); });
}

} // namespace quorvale::platform::connection
