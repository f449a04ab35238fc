#pragma once

#include "platform/observable/ObservableObject.hpp"

#include <string>
#include <vector>

namespace quorvale::ui::logs {

/// The helper's own recent log as display lines, oldest first. Main thread.
class LogStore final : public platform::observable::ObservableObject {
public:
    [[nodiscard]] const std::vector<std::string>& entries() const { return entries_.get(); }

private:
    platform::observable::Published<std::vector<std::string>> entries_{*this, {}};
};

} // namespace quorvale::ui::logs
