#include "model/AllowedCacheService.hpp"
#include "model/BlockedCacheService.hpp"

#include <gtest/gtest.h>

namespace quorvale::model {

TEST(CacheServicesTest, HoldOneRecordUnderSeveralKeys) {
    AllowedCacheService cache;
    const auto record = std::make_shared<AllowedClass>("192.0.2.1", "example.org", "NL", 1'700'000'000.5, 2460263.426,
                                                       443, 1000, std::int16_t{1});
    cache.allowedMap["192.0.2.1"] = record;
    cache.allowedMap["example.org"] = record;

    cache.allowedMap.at("192.0.2.1")->bytesOut += 24;

    EXPECT_EQ(cache.allowedMap.at("example.org")->bytesOut, 1024);
    EXPECT_EQ(record.use_count(), 3);
    EXPECT_EQ(record->dnsName, "example.org");
    EXPECT_EQ(record->port, 443);
}

TEST(CacheServicesTest, HoldBlockedConnectionsOfUnknownHosts) {
    const auto cache = std::make_shared<BlockedCacheService>();
    EXPECT_EQ(cache->bytesBlocked, 0);
    cache->blockedMap.emplace(
        "192.0.2.1", std::make_shared<BlockedClass>(ThreatType::None, std::nullopt, std::nullopt, "192.0.2.1"));
    const auto& record = *cache->blockedMap.at("192.0.2.1");
    EXPECT_FALSE(record.host);
    EXPECT_FALSE(record.country);
    EXPECT_EQ(record.ipAddress, "192.0.2.1");
}

} // namespace quorvale::model
