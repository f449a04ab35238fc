#include "platform/queue/SerialQueue.hpp"

#include <QThreadPool>

#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace quorvale::platform::queue {

class SerialQueue::Line : public std::enable_shared_from_this<Line> {
public:
    void add(Work work) {
        {
            const std::scoped_lock lock(mutex_);
            waiting_.push_back(std::move(work));
            if (std::exchange(isRunning_, true)) {
                return;
            }
        }
        QThreadPool::globalInstance()->start([self = shared_from_this()] { self->run(); });
    }

private:
    void run() {
        while (auto work = take()) {
            (*work)();
        }
    }

    std::optional<Work> take() {
        const std::scoped_lock lock(mutex_);
        if (waiting_.empty()) {
            isRunning_ = false;
            return std::nullopt;
        }
        auto work = std::move(waiting_.front());
        waiting_.pop_front();
        return work;
    }

    std::mutex mutex_;
    std::deque<Work> waiting_;
    bool isRunning_ = false;
};

SerialQueue::SerialQueue() : line_(std::make_shared<Line>()) {}

SerialQueue::~SerialQueue() = default;

void SerialQueue::async(Work work) {
    line_->add(std::move(work));
}

} // namespace quorvale::platform::queue
