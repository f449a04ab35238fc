#include "model/BlockedClass.hpp"

#include <utility>

namespace quorvale::model {

BlockedClass::BlockedClass(ThreatType category, std::optional<std::string> name, std::optional<std::string> land,
                           std::string address)
    : type(category), host(std::move(name)), country(std::move(land)), ipAddress(std::move(address)) {}

} // namespace quorvale::model
