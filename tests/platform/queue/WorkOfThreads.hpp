#pragma once

#include <functional>
#include <set>
#include <thread>
#include <vector>

namespace quorvale::platform::queue {

/// Work that four threads queue at the same time. No atomics: the queue is what keeps its pieces apart.
struct WorkOfThreads {
    static constexpr int perThread = 2000;

    explicit WorkOfThreads(const std::function<void(std::move_only_function<void()>)>& async) {
        for (auto& expected : next) {
            threads.emplace_back([this, async, &expected] {
                for (int i = 0; i < perThread; ++i) {
                    async([this, &expected, i] {
                        inOrder = inOrder && ++atWork == 1 && expected++ == i;
                        ranOn.insert(std::this_thread::get_id());
                        // Rarely: each time costs a turn of whatever else the machine is busy with.
                        if (i % 100 == 0) {
                            std::this_thread::yield();
                        }
                        --atWork;
                    });
                }
            });
        }
    }

    std::vector<int> next = std::vector<int>(4);
    bool inOrder = true;
    int atWork = 0;
    std::set<std::thread::id> ranOn;
    std::vector<std::jthread> threads;
};

} // namespace quorvale::platform::queue
