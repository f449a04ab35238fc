#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quorvale::platform::queue {

/// The queue whose work runs one piece at a time on the main thread, inside the application's event loop.
///
/// Work runs in the order of its deadline, and work of equal deadline in the order in which it was queued;
/// asynchronous work has the moment of its queuing as its deadline. Nothing runs before its deadline, whatever
/// the timer underneath does. Work that is queued by running work runs in a later turn of the event loop.
/// Work still queued when the application ends is dropped unrun.
class MainQueue {
public:
    using Clock = std::chrono::steady_clock;
    using Work = std::move_only_function<void()>;

    /// The queue of the process. The first use needs a QCoreApplication and may come from any thread.
    static MainQueue& shared();

    MainQueue();
    ~MainQueue();
    MainQueue(const MainQueue&) = delete;
    MainQueue& operator=(const MainQueue&) = delete;

    /// Queues `work` and returns before it runs, also on the main thread. Any thread.
    void async(Work work);

    /// Queues `work` to run as soon as `deadline` has passed. Any thread.
    void asyncAfter(Clock::time_point deadline, Work work);

private:
    class Loop;
    std::unique_ptr<Loop> loop_;
};

} // namespace quorvale::platform::queue
