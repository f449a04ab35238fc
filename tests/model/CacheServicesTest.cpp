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
    EXPECT_EQ(record->dnsName, "example.org");
    EXPECT_EQ(record->port, 443);
}

TEST(CacheServicesTest, HoldBlockedConnectionsOfUnknownHosts) {
    const BlockedClass record(ThreatType::None, std::nullopt, std::nullopt, "192.0.2.1");
    EXPECT_EQ(record.host, std::nullopt);
    EXPECT_EQ(record.country, std::nullopt);
    EXPECT_EQ(record.ipAddress, "192.0.2.1");
    EXPECT_EQ(BlockedCacheService().bytesBlocked, 0);
}

} // namespace quorvale::model
