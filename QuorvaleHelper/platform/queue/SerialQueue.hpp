#pragma once

#include <functional>
#include <memory>

namespace quorvale::platform::queue {

/// A queue whose work runs one piece at a time in the order of its queuing, apart from the main thread. It needs no
/// application object and no event loop: it works before and after them, too.
///
/// It has a thread while it has work, and none at rest: starting one costs twice what waking up a waiting one does. The
/// thread takes no signals, SIGPIPE included. All queued work runs, also when the queue ends before it; but the end of
/// the process doesn't wait for it, so who needs its result by then waits for that.
class SerialQueue {
public:
    using Work = std::move_only_function<void()>;

    SerialQueue();
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Queues `work` and returns without waiting for it. Any thread, also out of running work. False if the queue was
    /// at rest and the system has no thread left; then nothing is queued.
    [[nodiscard]] bool async(Work work);

private:
    class Line;
    std::shared_ptr<Line> line_;
};

} // namespace quorvale::platform::queue
