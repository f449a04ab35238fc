#include "model/AgentDefaults.hpp"
#include "model/AllowedCacheService.hpp"
#include "model/AppSettingsHelper.hpp"
#include "model/BlockedCacheService.hpp"
#include "model/DNSParsingHelpers.hpp"
#include "model/EventService.hpp"
#include "model/GeoIpRepository.hpp"
#include "model/GeoRule.hpp"
#include "model/IPHelper.hpp"
#include "model/PacketParsingHelper.hpp"

#include <gtest/gtest.h>

#include <concepts>
#include <type_traits>

namespace quorvale::model {

namespace {

template <typename Member>
struct TypeOf;

template <typename Type, typename Class>
struct TypeOf<Type Class::*> {
    using Is = Type;
};

/// Whether all these members are declared with that type.
template <typename Type, auto... members>
constexpr bool are = (std::same_as<typename TypeOf<decltype(members)>::Is, Type> && ...);

/// Its owners share the one object: there is no way to a second one.
template <typename Class>
constexpr bool isShared = !std::is_copy_constructible_v<Class> && !std::is_copy_assignable_v<Class> &&
                          !std::is_move_constructible_v<Class> && !std::is_move_assignable_v<Class>;

template <typename... Classes>
constexpr bool areShared = (isShared<Classes> && ...);

using Text = std::string;
template <typename Value>
using Map = std::unordered_map<std::string, std::shared_ptr<Value>>;

} // namespace

static_assert(
    are<const Text, &AgentDefaults::AllowRulesKey, &AgentDefaults::DenyRulesKey, &AgentDefaults::GeoRulesKey,
        &AgentDefaults::AppSettingsKey, &AgentDefaults::lastUpdatedRulesKey, &AgentDefaults::restrictionSettingskey,
        &GeoRule::isoCode, &GeoRule::country, &GeoIpRepository::sharedDefaultsKey, &EventService::sharedDefaultsKey>);
static_assert(
    are<std::vector<Text>, &AgentDefaults::domainWhiteList, &AgentDefaults::wildcardDomainWhiteList,
        &AgentDefaults::processWhiteList, &AgentDefaults::domainBlackList, &AgentDefaults::wildcardDomainBlackList,
        &AgentDefaults::processBlackList, &AgentDefaults::BlockedCountryCodes>);
static_assert(
    are<Text, &AllowedClass::ipAddress, &AllowedClass::dnsName, &AllowedClass::country, &BlockedClass::ipAddress>);
static_assert(are<std::optional<Text>, &BlockedClass::host, &BlockedClass::country>);
static_assert(are<const bool, &Restrictions::training, &Restrictions::geographyLock, &Restrictions::allowLock,
                  &Restrictions::denyLock>);
static_assert(are<double, &AllowedClass::timeStamp, &AllowedClass::julian>);
static_assert(are<std::int64_t, &AllowedClass::port, &BlockedCacheService::bytesBlocked>);
static_assert(are<std::int32_t, &AllowedClass::bytesOut> && are<std::int16_t, &AllowedClass::requests>);
static_assert(
    are<const std::int64_t, &BlockedCacheService::blocksCacheSize, &GeoIpRepository::limit, &EventService::limit>);
static_assert(are<ThreatType, &BlockedClass::type> && are<const RuleSource, &GeoRule::source>);
static_assert(are<std::unordered_map<ThreatType, bool>, &AgentDefaults::appSettings>);
static_assert(are<std::optional<Restrictions>, &AgentDefaults::restrictions>);
static_assert(are<const std::shared_ptr<platform::defaults::UserDefaults>, &AgentDefaults::groupDefaults>);
static_assert(are<const std::shared_ptr<platform::queue::SerialQueue>, &GeoIpRepository::geoStorageQueue>);
static_assert(are<Map<AllowedClass>, &AllowedCacheService::allowedMap> &&
              are<Map<BlockedClass>, &BlockedCacheService::blockedMap>);

static_assert(std::is_empty_v<AppSettingsHelper> && std::is_empty_v<DNSParsingHelpers> && std::is_empty_v<IPHelper> &&
              std::is_empty_v<PacketParsingHelper>);

static_assert(
    areShared<AgentDefaults, AllowedCacheService, AllowedClass, AppSettingsHelper, BlockedCacheService, BlockedClass,
              DNSParsingHelpers, EventService, GeoIpRepository, GeoRule, IPHelper, PacketParsingHelper>);

// A record is made of its values, all of them.
static_assert(!std::default_initializable<AgentDefaults> && !std::default_initializable<AllowedClass> &&
              !std::default_initializable<BlockedClass> && !std::default_initializable<GeoRule> &&
              !std::default_initializable<Restrictions> && !std::constructible_from<Restrictions, bool> &&
              !std::constructible_from<Restrictions, bool, bool, bool>);

TEST(MembersTest, AreWhatTheirRecordWasMadeOf) {
    const AllowedClass allowed("a", "b", "c", 1, 2, 3, 4, 5);
    EXPECT_EQ(allowed.ipAddress + allowed.dnsName + allowed.country, "abc");
    EXPECT_EQ((std::vector<double>{allowed.timeStamp, allowed.julian, static_cast<double>(allowed.port),
                                   static_cast<double>(allowed.bytesOut), static_cast<double>(allowed.requests)}),
              (std::vector<double>{1, 2, 3, 4, 5}));
    const BlockedClass blocked(ThreatType::Phishing, "a", std::nullopt, "c");
    EXPECT_EQ(blocked.type, ThreatType::Phishing);
    EXPECT_EQ(blocked.host.value_or("-") + blocked.country.value_or("-") + blocked.ipAddress, "a-c");
    const GeoRule rule("a", RuleSource::localSetting, "c");
    EXPECT_EQ(rule.isoCode + rule.country, "ac");
    EXPECT_EQ(rule.source, RuleSource::localSetting);
}

} // namespace quorvale::model
