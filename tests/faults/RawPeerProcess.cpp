#include "faults/RawPeerProcess.hpp"

#include <algorithm>
#include <iterator>

namespace quorvale::tests {

RawPeerProcess::RawPeerProcess(const PrivateBus& bus)
    : process_({.program = QUORVALE_RAW_PEER, .arguments = {bus.address()}}) {}

std::string RawPeerProcess::obey(std::string_view line) {
    return obey(std::vector{std::string(line)}).front();
}

std::vector<std::string> RawPeerProcess::obey(const std::vector<std::string>& lines) {
    for (const auto& line : lines) {
        process_.send(line);
    }
    std::vector<std::string> answers;
    std::ranges::generate_n(std::back_inserter(answers), std::ssize(lines), [this] {
        return process_.waitForLine([](std::string_view) { return true; }).value_or("no answer");
    });
    return answers;
}

} // namespace quorvale::tests
