#pragma once

#include "support/PrivateBus.hpp"
#include "support/Process.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace quorvale::tests {

/// The raw peer as a process on `bus`. What it can be told: `raw_peer --help`.
class RawPeerProcess {
public:
    explicit RawPeerProcess(const PrivateBus& bus);

    /// Has it obey one command line: what it answers.
    std::string obey(std::string_view line);
    /// The same for many in a row, which takes far less time than one by one.
    std::vector<std::string> obey(const std::vector<std::string>& lines);

private:
    Process process_;
};

} // namespace quorvale::tests
