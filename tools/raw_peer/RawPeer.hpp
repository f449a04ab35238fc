#pragma once

#include <systemd/sd-bus.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace quorvale::raw_peer {

/// Where a message goes; an empty text leaves the field out.
struct Target {
    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
};

/// Arguments of any signature, which says all about them but how large they are.
struct Body {
    std::string signature;
    /// The elements of each outermost array, and the least bytes of each outermost text.
    std::size_t size = 1;
    /// How many values lie inside each other in each variant.
    unsigned depth = 0;
    /// What such a value is of: a signature with a variant in it.
    std::string nest = "a{sv}";
    /// What each text begins with; blanks follow it.
    std::string text = "x";
};

/// A connection to a message bus that sends whatever the bus carries, without regard to what its receiver expects.
class RawPeer {
public:
    explicit RawPeer(const std::string& address);

    /// The outcome of each is "ok", or an error's name and text with a blank between.
    [[nodiscard]] std::string own(const std::string& name) const;
    [[nodiscard]] std::string call(const Target& target, const Body& body) const;
    [[nodiscard]] std::string signal(const Target& target, const Body& body) const;
    /// Sends replies to calls that never came here: to each of the first `count` messages of `destination`, one that
    /// carries `body`, or an error if it is empty.
    [[nodiscard]] std::string forge(const std::string& destination, std::uint64_t count, const Body& body) const;

private:
    std::unique_ptr<sd_bus, decltype(&sd_bus_unref)> bus_{nullptr, sd_bus_unref};
};

} // namespace quorvale::raw_peer
