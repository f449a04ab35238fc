#pragma once

#include <chrono>
#include <concepts>
#include <thread>

namespace quorvale::tests {

/// As `waitUntil`, but the calling thread's event loop does not run meanwhile.
[[nodiscard]] bool blockUntil(const std::predicate auto& condition,
                              std::chrono::milliseconds deadline = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return true;
}

} // namespace quorvale::tests
