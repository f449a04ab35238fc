#pragma once

#include "model/RuleSource.hpp"

#include <string>

namespace quorvale::model {

/// One geography rule. Held by `std::shared_ptr`; any thread.
class GeoRule {
public:
    GeoRule(std::string code, RuleSource origin, std::string name);

    GeoRule(const GeoRule&) = delete;
    GeoRule& operator=(const GeoRule&) = delete;

    const std::string isoCode; ///< ISO 3166-1 alpha-2
    const RuleSource source;
    const std::string country; ///< the country's name
};

} // namespace quorvale::model
