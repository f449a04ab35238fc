#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorvale::bench {

/// Something of ours, and what it is measured against in the same run.
struct Comparison {
    enum class Allocations : std::uint8_t { Free, AsTheBaseline };

    /// Does the thing once.
    using Operation = std::function<void()>;

    std::string what;
    std::size_t bytes; ///< that one operation goes through
    Operation ours;
    std::string baselineName;
    Operation baseline;
    /// The most that ours may take, as a multiple of the baseline's time.
    std::optional<double> timeLimit = std::nullopt;
    /// The most that one operation of ours may take.
    std::optional<std::chrono::nanoseconds> longest = std::nullopt;
    /// The least that ours must go through, in GB/s.
    std::optional<double> throughputGoal = std::nullopt;
    /// Whether ours, once it is warm, may call `operator new` more often than the baseline does.
    Allocations allocations = Allocations::Free;
};

/// Measures all of them by turns, several times each, and prints a table of the shortest times. Takes Google
/// Benchmark's arguments. The exit status: 0 when all that is demanded of ours is met.
int run(int argc, char** argv, const std::vector<Comparison>& comparisons);

} // namespace quorvale::bench
