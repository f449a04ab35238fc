#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorvale::bench {

/// A quantity of ours beside a baseline's, for what takes more than one process and thus a clock on the wall.
struct Figure {
    std::string what; ///< with its unit
    std::vector<double> ours;
    std::string baselineName;
    std::vector<double> baseline;
    /// The least and the most that the ratio of the medians may be.
    std::optional<double> least = std::nullopt;
    std::optional<double> most = std::nullopt;
    /// The most that the median of ours may be.
    std::optional<double> mostOfOurs = std::nullopt;
};

/// Takes `count` samples of each side, in turns that change which comes first, so that both see the same machine.
void sampleByTurns(std::size_t count, Figure& figure, const std::function<double()>& ours,
                   const std::function<double()>& baseline);

/// Prints a table of medians; whether all that is demanded is met.
bool print(const std::vector<Figure>& figures);

} // namespace quorvale::bench
