#include "platform/observable/objectDidChange.hpp"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

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

Subscription objectDidChange(ObservableObject& object, MainQueue& mainQueue, std::function<void()> observer) {
    return object.objectWillChange(
        [refresh = std::make_shared<Refresh>(mainQueue, std::move(observer))] { refresh->request(); });
}

} // namespace quorvale::platform::observable
