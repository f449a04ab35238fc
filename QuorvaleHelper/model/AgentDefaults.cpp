#include "model/AgentDefaults.hpp"

#include <utility>

namespace quorvale::model {

AgentDefaults::AgentDefaults(std::shared_ptr<platform::defaults::UserDefaults> suite)
    : groupDefaults(std::move(suite)) {}

} // namespace quorvale::model
