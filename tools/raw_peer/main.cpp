#include "raw_peer/RawPeer.hpp"

#include <charconv>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

using namespace quorvale::raw_peer;

namespace {

constexpr int usageError = 2;
constexpr auto usage =
    "Usage: raw_peer ADDRESS\n\n"
    "A program on the message bus at ADDRESS that sends what no decent one does. It obeys the commands on its "
    "standard\n"
    "input, one a line, and answers each with a line \"ok\", \"failed REASON\" or an error's name and text.\n\n"
    "  own NAME\n"
    "  call DESTINATION PATH INTERFACE MEMBER BODY     waits for the answer\n"
    "  signal DESTINATION PATH INTERFACE MEMBER BODY\n"
    "  forge DESTINATION COUNT BODY                    answers the first COUNT messages of DESTINATION to anybody;\n"
    "                                                  with an error if BODY is empty\n\n"
    "BODY is [SIGNATURE [SIZE [DEPTH [NEST [TEXT]]]]]: arguments of that signature, with SIZE elements in each array,\n"
    "texts that are TEXT and blanks up to SIZE bytes, and in each variant DEPTH values of the signature NEST inside "
    "each\n"
    "other. \"-\" stands for an empty word.\n";

class Line {
public:
    explicit Line(const std::string& line) : words_(line) {}

    std::string word() {
        std::string word;
        words_ >> word;
        return word == "-" ? std::string() : word;
    }

    template <typename Number>
    Number number(Number standard) {
        const auto text = word();
        std::from_chars(text.data(), text.data() + text.size(), standard);
        return standard;
    }

    Target target() { return {.destination = word(), .path = word(), .interface = word(), .member = word()}; }

    Body body() {
        Body body;
        body.signature = word();
        body.size = number(body.size);
        body.depth = number(body.depth);
        if (auto nest = word(); !nest.empty()) {
            body.nest = std::move(nest);
        }
        if (std::string text; std::getline(words_ >> std::ws, text)) {
            body.text = std::move(text);
        }
        return body;
    }

private:
    std::istringstream words_;
};

std::string obey(const RawPeer& peer, const std::string& command) {
    Line line(command);
    const auto verb = line.word();
    if (verb == "own") {
        return peer.own(line.word());
    }
    if (verb == "forge") {
        const auto destination = line.word();
        const auto count = line.number(1U);
        return peer.forge(destination, count, line.body());
    }
    if (verb == "call" || verb == "signal") {
        const auto target = line.target();
        const auto body = line.body();
        return verb == "call" ? peer.call(target, body) : peer.signal(target, body);
    }
    throw std::invalid_argument("unknown command: " + command);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::string_view(argv[1]).starts_with('-')) {
        std::cerr << usage;
        return usageError;
    }
    try {
        const RawPeer peer(argv[1]);
        for (std::string command; std::getline(std::cin, command);) {
            std::cout << obey(peer, command) << '\n' << std::flush;
        }
    } catch (const std::exception& error) {
        std::cerr << "raw_peer: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
