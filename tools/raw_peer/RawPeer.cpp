#include "raw_peer/RawPeer.hpp"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace quorvale::raw_peer {

namespace {

using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

constexpr std::uint64_t patience = 20'000'000; // microseconds

/// Throws for what no bus carries: the command is wrong, not its receiver.
int check(int result) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category());
    }
    return result;
}

const char* orNull(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

std::string outcome(int result, const sd_bus_error& error = {}) {
    if (error.name) {
        return std::string(error.name) + ' ' + (error.message ? error.message : "");
    }
    return result < 0 ? std::string("failed ") + std::strerror(-result) : "ok";
}

/// Cuts the first complete type off `signature`.
std::string_view nextType(std::string_view& signature) {
    std::size_t length = signature.find_first_not_of('a') + 1;
    for (int open = signature[length - 1] == '(' || signature[length - 1] == '{' ? 1 : 0; open > 0; ++length) {
        const auto character = signature[length];
        open += character == '(' || character == '{' ? 1 : 0;
        open -= character == ')' || character == '}' ? 1 : 0;
    }
    const auto type = signature.substr(0, length);
    signature.remove_prefix(length);
    return type;
}

class Filler {
public:
    Filler(sd_bus_message* message, const Body& body) : message_(message), body_(body) {}

    void fill(std::string_view signature, std::size_t size, unsigned depth) {
        while (!signature.empty()) {
            fillOne(nextType(signature), size, depth);
        }
    }

private:
    void fillOne(std::string_view type, std::size_t size, unsigned depth) {
        switch (type.front()) {
        case 'a':
            enter('a', type.substr(1), [&](std::string_view element) {
                for (std::size_t i = 0; i < size; ++i) {
                    fillOne(element, 1, depth);
                }
            });
            break;
        case '(':
            enter('r', type.substr(1, type.size() - 2), [&](std::string_view inner) { fill(inner, 1, depth); });
            break;
        case '{':
            enter('e', type.substr(1, type.size() - 2), [&](std::string_view inner) {
                const auto key = inner.front();
                inner.remove_prefix(1);
                if (key == 's') {
                    check(sd_bus_message_append(message_, "s", ("key " + std::to_string(++keys_)).c_str()));
                } else {
                    basic(key, 1);
                }
                fill(inner, 1, depth);
            });
            break;
        case 'v':
            enter('v', depth > 0 ? body_.nest : "s",
                  [&](std::string_view inner) { fill(inner, 1, depth > 0 ? depth - 1 : 0); });
            break;
        default:
            basic(type.front(), size);
        }
    }

    template <typename Content>
    void enter(char container, std::string_view contents, Content content) {
        check(sd_bus_message_open_container(message_, container, std::string(contents).c_str()));
        content(contents);
        check(sd_bus_message_close_container(message_));
    }

    void basic(char type, std::size_t size) {
        const std::string signature(1, type);
        switch (type) {
        case 's': {
            auto text = body_.text;
            text.resize(std::max(size, text.size()), ' ');
            check(sd_bus_message_append(message_, "s", text.c_str()));
            break;
        }
        case 'o':
            check(sd_bus_message_append(message_, "o", "/x"));
            break;
        case 'g':
            check(sd_bus_message_append(message_, "g", "s"));
            break;
        case 'd':
            check(sd_bus_message_append(message_, "d", 1.0));
            break;
        case 'x':
        case 't':
            check(sd_bus_message_append(message_, signature.c_str(), std::uint64_t{1}));
            break;
        case 'h':
            check(sd_bus_message_append(message_, "h", STDOUT_FILENO));
            break;
        default:
            check(sd_bus_message_append(message_, signature.c_str(), 1));
        }
    }

    sd_bus_message* message_;
    const Body& body_;
    std::size_t keys_ = 0;
};

/// A message that `create` makes, with `body` in it.
template <typename Create>
Message make(const Body& body, Create create) {
    sd_bus_message* created = nullptr;
    check(create(&created));
    Message message(created, sd_bus_message_unref);
    Filler(created, body).fill(body.signature, body.size, body.depth);
    return message;
}

} // namespace

RawPeer::RawPeer(const std::string& address) {
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus));
    bus_.reset(bus);
    check(sd_bus_set_address(bus, address.c_str()));
    check(sd_bus_set_bus_client(bus, 1));
    check(sd_bus_negotiate_fds(bus, 1));
    check(sd_bus_start(bus));
}

std::string RawPeer::own(const std::string& name) const {
    return outcome(sd_bus_request_name(bus_.get(), name.c_str(), 0));
}

std::string RawPeer::call(const Target& target, const Body& body) const {
    const auto message = make(body, [&](auto** created) {
        return sd_bus_message_new_method_call(bus_.get(), created, orNull(target.destination), target.path.c_str(),
                                              orNull(target.interface), target.member.c_str());
    });
    sd_bus_error error{};
    const auto result = sd_bus_call(bus_.get(), message.get(), patience, &error, nullptr);
    auto text = outcome(result, error);
    sd_bus_error_free(&error);
    return text;
}

std::string RawPeer::signal(const Target& target, const Body& body) const {
    const auto message = make(body, [&](auto** created) {
        return sd_bus_message_new_signal(bus_.get(), created, target.path.c_str(), target.interface.c_str(),
                                         target.member.c_str());
    });
    if (!target.destination.empty()) {
        check(sd_bus_message_set_destination(message.get(), target.destination.c_str()));
    }
    const auto result = sd_bus_send(bus_.get(), message.get(), nullptr);
    return outcome(result < 0 ? result : sd_bus_flush(bus_.get()));
}

std::string RawPeer::forge(const std::string& destination, std::uint64_t count, const Body& body) const {
    int result = 0;
    for (std::uint64_t serial = 1; serial <= count && result >= 0; ++serial) {
        // The library makes a reply from the message that it answers, so there has to be one.
        const auto answered = make({}, [&](auto** created) {
            return sd_bus_message_new_method_call(bus_.get(), created, nullptr, "/", nullptr, "forged");
        });
        check(sd_bus_message_seal(answered.get(), serial, 0));
        const auto reply = make(body, [&](auto** created) {
            return body.signature.empty()
                       ? sd_bus_message_new_method_errorf(answered.get(), created, SD_BUS_ERROR_FAILED, "Forged.")
                       : sd_bus_message_new_method_return(answered.get(), created);
        });
        check(sd_bus_message_set_destination(reply.get(), destination.c_str()));
        result = sd_bus_send(bus_.get(), reply.get(), nullptr);
    }
    return outcome(result < 0 ? result : sd_bus_flush(bus_.get()));
}

} // namespace quorvale::raw_peer
