#pragma once

#include "platform/queue/MainQueue.hpp"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace quorvale::platform::observable {

/// A registration with an observable object. Dropping it ends the registration; it may outlive the object.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    Subscription(Subscription&&) = default;
    Subscription& operator=(Subscription&&) = default;

private:
    friend class ObservableObject;
    using Observer = std::function<void()>;

    explicit Subscription(std::shared_ptr<Observer> observer) : observer_(std::move(observer)) {}

    std::shared_ptr<Observer> observer_;
};

/// Base of types whose published values tell their observers of each change before it happens.
/// Main thread only.
class ObservableObject {
public:
    using Observer = std::function<void()>;

    ObservableObject() = default;
    ObservableObject(const ObservableObject&) = delete;
    ObservableObject& operator=(const ObservableObject&) = delete;

    /// Calls `observer` just before each assignment to a published value, also of an equal value, as long as
    /// the subscription lives, in the order of the subscriptions. An observer may drop any subscription, which
    /// ends it at once, and may make new ones, which are first called for the next change.
    Subscription objectWillChange(Observer observer);

    /// Calls `observer` on `mainQueue`, when there is a new value to show, as long as the subscription lives. Changes
    /// that come faster than a display shows them are one call, after the last of them. `mainQueue` outlives the
    /// object.
    Subscription objectDidChange(queue::MainQueue& mainQueue, Observer observer);

protected:
    ~ObservableObject() = default;

private:
    template <typename Value>
    friend class Published;
    void notify();

    std::vector<std::weak_ptr<Observer>> observers_;
};

/// A value of an observable object that notifies the object's observers before it is assigned.
template <typename Value>
class Published {
public:
    /// `owner` is the object whose member this is.
    Published(ObservableObject& owner, Value value) : owner_(owner), value_(std::move(value)) {}

    [[nodiscard]] const Value& get() const { return value_; }

    void set(Value value) {
        owner_.notify();
        value_ = std::move(value);
    }

private:
    ObservableObject& owner_;
    Value value_;
};

} // namespace quorvale::platform::observable
