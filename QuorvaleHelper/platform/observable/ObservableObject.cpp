#include "platform/observable/ObservableObject.hpp"

namespace quorvale::platform::observable {

Subscription ObservableObject::objectWillChange(Observer observer) {
    auto kept = std::make_shared<Observer>(std::move(observer));
    std::erase_if(observers_, [](const auto& known) { return known.expired(); });
    observers_.push_back(kept);
    return Subscription(std::move(kept));
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
