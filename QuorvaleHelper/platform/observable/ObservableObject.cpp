#include "platform/observable/ObservableObject.hpp"

#include <algorithm>
#include <chrono>

namespace quorvale::platform::observable {

namespace {

using queue::MainQueue;

constexpr std::chrono::milliseconds frame{16};

/// At most one call on its way, and one in a frame.
class Refresh : public std::enable_shared_from_this<Refresh> {
public:
    Refresh(MainQueue& mainQueue, std::function<void()> observer)
        : mainQueue_(mainQueue), observer_(std::move(observer)) {}

    void request() {
        if (!std::exchange(isQueued_, true)) {
            mainQueue_.asyncAfter(std::max(MainQueue::Clock::now(), next_), [weak = weak_from_this()] {
                if (const auto self = weak.lock()) {
                    self->isQueued_ = false;
                    self->next_ = MainQueue::Clock::now() + frame;
                    self->observer_();
                }
            });
        }
    }

private:
    MainQueue& mainQueue_;
    std::function<void()> observer_;
    bool isQueued_ = false;
    MainQueue::Clock::time_point next_;
};

} // namespace

Subscription ObservableObject::objectWillChange(Observer observer) {
    auto kept = std::make_shared<Observer>(std::move(observer));
    std::erase_if(observers_, [](const auto& known) { return known.expired(); });
    observers_.push_back(kept);
    return Subscription(std::move(kept));
}

Subscription ObservableObject::objectDidChange(MainQueue& mainQueue, Observer observer) {
    return objectWillChange(
        [refresh = std::make_shared<Refresh>(mainQueue, std::move(observer))] { refresh->request(); });
}

void ObservableObject::notify() {
    // An observer may subscribe another one, which can move the list.
    const auto observers = observers_;
    for (const auto& known : observers) {
        if (const auto observer = known.lock()) {
            (*observer)();
        }
    }
}

} // namespace quorvale::platform::observable
