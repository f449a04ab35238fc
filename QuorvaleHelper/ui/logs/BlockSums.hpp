#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace quorvale::ui::logs {

/// The sums of many sizes, such as the heights of lines one below the other. A million of them take milliseconds to
/// add up, and a place among them is found at once: it keeps a sum for every 256 and asks for the rest again.
class BlockSums {
public:
    using SizeOf = std::function<int(std::size_t index)>;

    /// `sizeOf` gives sizes that are positive, but for the last one, and always the same.
    BlockSums(std::size_t count, SizeOf sizeOf);

    [[nodiscard]] std::int64_t total() const { return sums_.back(); }

    [[nodiscard]] int size(std::size_t index) const { return sizeOf_(index); }

    /// The sum of the sizes before that of `index`.
    [[nodiscard]] std::int64_t before(std::size_t index) const;

    /// Where `sum` is: the first index to whose end the sizes add up to more than that, or the last one.
    [[nodiscard]] std::size_t at(std::int64_t sum) const;

private:
    static constexpr std::size_t block = 256;

    std::size_t count_;
    SizeOf sizeOf_;
    std::vector<std::int64_t> sums_; ///< before each block, and of all
};

} // namespace quorvale::ui::logs
