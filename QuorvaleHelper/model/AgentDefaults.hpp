#pragma once

#include "model/Restrictions.hpp"
#include "model/ThreatType.hpp"
#include "platform/defaults/UserDefaults.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorvale::model {

/// The rules and settings shared with the agent. Held by `std::shared_ptr`; one thread at a time.
class AgentDefaults {
public:
    /// The suite of the application group, with which the agent's service name begins.
    static constexpr std::string_view suiteName = "QVL7T4M2XK.com.quorvale";

    /// Empty lists, no switch, no restrictions known. `suite` is null where there is none.
    explicit AgentDefaults(std::shared_ptr<platform::defaults::UserDefaults> suite);

    AgentDefaults(const AgentDefaults&) = delete;
    AgentDefaults& operator=(const AgentDefaults&) = delete;

    // Keys of the suite.
    const std::string AllowRulesKey = "AllowRules";
    const std::string DenyRulesKey = "DenyRules";
    const std::string GeoRulesKey = "GeoRules";
    const std::string AppSettingsKey = "AppSettings";
    const std::string lastUpdatedRulesKey = "LastUpdatedRules";
    const std::string restrictionSettingskey = "RestrictionSettings";

    std::vector<std::string> domainWhiteList;
    std::vector<std::string> wildcardDomainWhiteList;
    std::vector<std::string> processWhiteList;
    std::vector<std::string> domainBlackList;
    std::vector<std::string> wildcardDomainBlackList;
    std::vector<std::string> processBlackList;
    /// ISO 3166-1 alpha-2.
    std::vector<std::string> BlockedCountryCodes;
    /// Whether a category is on; a category may have no switch.
    std::unordered_map<ThreatType, bool> appSettings;
    /// Absent when not known.
    std::optional<Restrictions> restrictions;
    /// Null when there is none.
    const std::shared_ptr<platform::defaults::UserDefaults> groupDefaults;
};

} // namespace quorvale::model
