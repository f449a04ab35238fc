#include "model/GeoRule.hpp"

#include <utility>

namespace quorvale::model {

GeoRule::GeoRule(std::string code, RuleSource origin, std::string name)
    : isoCode(std::move(code)), source(origin), country(std::move(name)) {}

} // namespace quorvale::model
