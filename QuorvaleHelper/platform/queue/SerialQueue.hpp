#pragma once

#include <functional>
#include <memory>

namespace quorvale::platform::queue {

/// A queue whose work runs one piece at a time in the order of its queuing, apart from the main thread.
///
/// It has no thread of its own: while it has work it uses one of the process-wide pool, which ends its idle threads
/// after half a minute. All queued work runs, also when the queue ends before it; the end of the application waits for
/// it. Work must not wait for that of another queue, which may need the same thread.
class SerialQueue {
public:
    using Work = std::move_only_function<void()>;

    SerialQueue();
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Queues `work` and returns without waiting for it. Any thread, also out of running work.
    void async(Work work);

private:
    class Line;
    std::shared_ptr<Line> line_;
};

} // namespace quorvale::platform::queue
