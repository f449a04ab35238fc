#include "platform/queue/MainQueue.hpp"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

namespace quorvale::platform::queue {

namespace {

struct Item {
    MainQueue::Clock::time_point deadline;
    std::uint64_t sequence;
    MainQueue::Work work;
};

/// How long work that is due may keep the event loop from its other sources: timers, sockets, the display.
constexpr std::chrono::milliseconds longestTurn{5};

/// Heap order: the item that runs next is at the front.
bool runsLater(const Item& left, const Item& right) {
    return std::pair(left.deadline, left.sequence) > std::pair(right.deadline, right.sequence);
}

} // namespace

class MainQueue::Loop final : public QObject {
public:
    Loop() {
        Q_ASSERT(QCoreApplication::instance());
        moveToThread(QCoreApplication::instance()->thread());
    }

    void add(Clock::time_point deadline, Work work) {
        bool wake = false;
        {
            const std::scoped_lock lock(mutex_);
            items_.push_back({deadline, next_++, std::move(work)});
            std::ranges::push_heap(items_, runsLater);
            wake = !std::exchange(wakePosted_, true);
        }
        if (wake) {
            post();
        }
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User && event->type() != QEvent::Timer) {
            return QObject::event(event);
        }
        runDue();
        return true;
    }

private:
    void runDue() {
        std::uint64_t limit = 0;
        {
            const std::scoped_lock lock(mutex_);
            wakePosted_ = false;
            limit = next_;
        }
        const auto end = Clock::now() + longestTurn;
        while (auto work = takeDue(limit)) {
            work();
            if (Clock::now() >= end) {
                break;
            }
        }
        proceed();
    }

    Work takeDue(std::uint64_t limit) {
        const std::scoped_lock lock(mutex_);
        if (items_.empty() || items_.front().deadline > Clock::now() || items_.front().sequence >= limit) {
            return {};
        }
        std::ranges::pop_heap(items_, runsLater);
        auto work = std::move(items_.back().work);
        items_.pop_back();
        return work;
    }

    /// Another turn at once if work is due, else when it will be. Posted, since a timer of no time is served last by
    /// some event loops.
    void proceed() {
        using namespace std::chrono;
        timer_.stop();
        const std::scoped_lock lock(mutex_);
        if (items_.empty() || wakePosted_) {
            return;
        }
        const auto left = ceil<milliseconds>(items_.front().deadline - Clock::now());
        if (left <= 0ms) {
            wakePosted_ = true;
            post();
            return;
        }
        const auto delay = std::min<milliseconds::rep>(left.count(), std::numeric_limits<int>::max());
        timer_.start(static_cast<int>(delay), Qt::PreciseTimer, this);
    }

    void post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

    std::mutex mutex_;
    std::vector<Item> items_;
    std::uint64_t next_ = 0;
    bool wakePosted_ = false;
    QBasicTimer timer_;
};

MainQueue& MainQueue::shared() {
    static auto* const queue = new MainQueue;
    return *queue;
}

MainQueue::MainQueue() : loop_(std::make_unique<Loop>()) {}

MainQueue::~MainQueue() = default;

void MainQueue::async(Work work) {
    loop_->add(Clock::now(), std::move(work));
}

void MainQueue::asyncAfter(Clock::time_point deadline, Work work) {
    loop_->add(deadline, std::move(work));
}

} // namespace quorvale::platform::queue
