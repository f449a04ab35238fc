#pragma once

#include <algorithm>
#include <stop_token>
#include <thread>
#include <vector>

namespace quorvale::tests {

/// Keeps every core busy, so that threads and processes have to wait for each other at any point.
class Load {
public:
    Load() {
        for (auto core = std::max(2U, std::thread::hardware_concurrency()); core > 0; --core) {
            threads_.emplace_back([](const std::stop_token& stop) {
                while (!stop.stop_requested()) {
                }
            });
        }
    }

private:
    std::vector<std::jthread> threads_;
};

} // namespace quorvale::tests
