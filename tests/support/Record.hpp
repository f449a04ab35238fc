#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

namespace quorvale::tests {

/// What happens on other threads, in order. Any thread.
template <typename Event>
class Record {
public:
    void add(Event event) {
        const std::scoped_lock lock(mutex_);
        events_.push_back(std::move(event));
        grown_.notify_all();
    }

    /// All so far, once there are `count` of them. Fewer fail the test.
    std::vector<Event> await(std::size_t count) {
        std::unique_lock lock(mutex_);
        EXPECT_TRUE(grown_.wait_for(lock, std::chrono::seconds(20), [&] { return events_.size() >= count; }));
        return events_;
    }

private:
    std::mutex mutex_;
    std::condition_variable grown_;
    std::vector<Event> events_;
};

} // namespace quorvale::tests
