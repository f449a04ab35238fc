#include "platform/queue/SerialQueue.hpp"

#include <csignal>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace quorvale::platform::queue {

class SerialQueue::Line : public std::enable_shared_from_this<Line> {
public:
    bool add(Work work) {
        // The thread is started under the lock: nobody may count on one that can't be had.
        const std::scoped_lock lock(mutex_);
        if (!isRunning_ && !start()) {
            return false;
        }
        isRunning_ = true;
        waiting_.push_back(std::move(work));
        return true;
    }

private:
    bool start() {
        try {
            std::thread([self = shared_from_this()] { self->run(); }).detach();
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }

    void run() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
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

bool SerialQueue::async(Work work) {
    return line_->add(std::move(work));
}

} // namespace quorvale::platform::queue
