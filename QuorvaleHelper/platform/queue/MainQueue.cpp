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

/// How long after work more of it waits for a turn that comes by itself. To wake the loop for each of a flood's items
/// would cost several times what the items do.
constexpr std::chrono::milliseconds lull{1};

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
            wake = !std::exchange(isTurnToCome_, true);
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
            isTurnToCome_ = false;
            limit = next_;
        }
        const auto end = Clock::now() + longestTurn;
        bool hasWorked = false;
        while (auto work = takeDue(limit)) {
            work();
            hasWorked = true;
            if (Clock::now() >= end) {
                break;
            }
        }
        proceed(hasWorked);
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

    /// Another turn at once if work is due, else after the lull if there was work, else when some will be due. Posted,
    /// since a timer of no time is served last by some event loops.
    void proceed(bool hasWorked) {
        using namespace std::chrono;
        timer_.stop();
        const std::scoped_lock lock(mutex_);
        if (isTurnToCome_ || (items_.empty() && !hasWorked)) {
            return;
        }
        const auto left = items_.empty() ? lull : ceil<milliseconds>(items_.front().deadline - Clock::now());
        isTurnToCome_ = hasWorked || left <= 0ms;
        if (left <= 0ms) {
            post();
            return;
        }
        const auto delay = std::min<milliseconds::rep>((hasWorked ? std::min(left, lull) : left).count(),
                                                       std::numeric_limits<int>::max());
        timer_.start(static_cast<int>(delay), Qt::PreciseTimer, this);
    }

    void post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

    std::mutex mutex_;
    std::vector<Item> items_;
    std::uint64_t next_ = 0;
    bool isTurnToCome_ = false;
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
