#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace quorvale::platform::observable {

/// An object that is made, or obtained, when it is first asked for and kept from then on. Main thread.
template <typename Object>
class StateObject {
public:
    explicit StateObject(std::function<std::shared_ptr<Object>()> make) : make_(std::move(make)) {}

    const std::shared_ptr<Object>& get() {
        if (!object_) {
            object_ = make_();
        }
        return object_;
    }

private:
    std::function<std::shared_ptr<Object>()> make_;
    std::shared_ptr<Object> object_;
};

} // namespace quorvale::platform::observable
