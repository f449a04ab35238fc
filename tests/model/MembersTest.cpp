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
#include <cstddef>
#include <initializer_list>
#include <type_traits>

namespace quorvale::model {

namespace {

struct Member {
    std::size_t offset;
    std::size_t size;
    std::size_t alignment;
};

template <typename Declared, std::same_as<Declared> Type>
consteval Member memberAt(std::size_t offset) {
    return {offset, sizeof(Type), alignof(Type)};
}

/// Whether an object has just these members, in this order.
template <typename Class>
consteval bool hasMembers(std::initializer_list<Member> members) {
    const auto aligned = [](std::size_t place, std::size_t alignment) {
        return (place + alignment - 1) / alignment * alignment;
    };
    std::size_t end = 0;
    for (const auto& member : members) {
        if (member.offset != aligned(end, member.alignment)) {
            return false;
        }
        end = member.offset + member.size;
    }
    return std::is_standard_layout_v<Class> && sizeof(Class) == aligned(end, alignof(Class));
}

/// Its owners share the one object: there is no way to a second one.
template <typename Class>
constexpr bool isShared = !std::is_copy_constructible_v<Class> && !std::is_copy_assignable_v<Class> &&
                          !std::is_move_constructible_v<Class> && !std::is_move_assignable_v<Class>;

template <typename... Classes>
constexpr bool areShared = (isShared<Classes> && ...);

using Text = std::string;
using Texts = std::vector<std::string>;
using Suite = std::shared_ptr<platform::defaults::UserDefaults>;
using Queue = std::shared_ptr<platform::queue::SerialQueue>;
template <typename Value>
using Map = std::unordered_map<std::string, std::shared_ptr<Value>>;

} // namespace

// clang-format off
#define MEMBER(name, ...) memberAt<decltype(Class::name), __VA_ARGS__>(offsetof(Class, name))
#define HAS_MEMBERS(name, ...) static_assert([] { using Class = name; return hasMembers<Class>({__VA_ARGS__}); }())

HAS_MEMBERS(AgentDefaults,
    MEMBER(AllowRulesKey,           const Text),
    MEMBER(DenyRulesKey,            const Text),
    MEMBER(GeoRulesKey,             const Text),
    MEMBER(AppSettingsKey,          const Text),
    MEMBER(lastUpdatedRulesKey,     const Text),
    MEMBER(restrictionSettingskey,  const Text),
    MEMBER(domainWhiteList,         Texts),
    MEMBER(wildcardDomainWhiteList, Texts),
    MEMBER(processWhiteList,        Texts),
    MEMBER(domainBlackList,         Texts),
    MEMBER(wildcardDomainBlackList, Texts),
    MEMBER(processBlackList,        Texts),
    MEMBER(BlockedCountryCodes,     Texts),
    MEMBER(appSettings,             std::unordered_map<ThreatType, bool>),
    MEMBER(restrictions,            std::optional<Restrictions>),
    MEMBER(groupDefaults,           const Suite));

HAS_MEMBERS(AllowedClass,
    MEMBER(ipAddress, Text),
    MEMBER(dnsName,   Text),
    MEMBER(country,   Text),
    MEMBER(timeStamp, double),
    MEMBER(julian,    double),
    MEMBER(port,      std::int64_t),
    MEMBER(bytesOut,  std::int32_t),
    MEMBER(requests,  std::int16_t));

HAS_MEMBERS(BlockedClass,
    MEMBER(type,      ThreatType),
    MEMBER(host,      std::optional<Text>),
    MEMBER(country,   std::optional<Text>),
    MEMBER(ipAddress, Text));

HAS_MEMBERS(GeoRule,
    MEMBER(isoCode, const Text),
    MEMBER(source,  const RuleSource),
    MEMBER(country, const Text));

HAS_MEMBERS(Restrictions,
    MEMBER(training,      const bool),
    MEMBER(geographyLock, const bool),
    MEMBER(allowLock,     const bool),
    MEMBER(denyLock,      const bool));

HAS_MEMBERS(AllowedCacheService,
    MEMBER(allowedMap, Map<AllowedClass>));

HAS_MEMBERS(BlockedCacheService,
    MEMBER(blockedMap,      Map<BlockedClass>),
    MEMBER(blocksCacheSize, const std::int64_t),
    MEMBER(bytesBlocked,    std::int64_t));

HAS_MEMBERS(GeoIpRepository,
    MEMBER(sharedDefaultsKey, const Text),
    MEMBER(limit,             const std::int64_t),
    MEMBER(geoStorageQueue,   const Queue));

HAS_MEMBERS(EventService,
    MEMBER(limit,             const std::int64_t),
    MEMBER(sharedDefaultsKey, const Text));
// clang-format on

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
