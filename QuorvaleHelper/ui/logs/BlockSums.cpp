#include "ui/logs/BlockSums.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorvale::ui::logs {

BlockSums::BlockSums(std::size_t count, SizeOf sizeOf) : count_(count), sizeOf_(std::move(sizeOf)), sums_{0} {
    sums_.reserve(count / block + 2);
    std::int64_t sum = 0;
    for (std::size_t index = 0; index < count;) {
        for (const auto end = std::min(index + block, count); index < end; ++index) {
            sum += sizeOf_(index);
        }
        sums_.push_back(sum);
    }
}

std::int64_t BlockSums::before(std::size_t index) const {
    auto sum = sums_[index / block];
    for (auto earlier = index / block * block; earlier < index; ++earlier) {
        sum += sizeOf_(earlier);
    }
    return sum;
}

std::size_t BlockSums::at(std::int64_t sum) const {
    const auto after = std::ranges::upper_bound(sums_.begin(), std::prev(sums_.end()), sum);
    const auto last = after == sums_.begin() ? after : std::prev(after);
    auto index = static_cast<std::size_t>(last - sums_.begin()) * block;
    for (auto end = *last + sizeOf_(index); end <= sum && index + 1 < count_; end += sizeOf_(index)) {
        ++index;
    }
    return index;
}

} // namespace quorvale::ui::logs
