#include "model/AllowedCacheService.hpp"
#include "model/BlockedClass.hpp"

#include <gtest/gtest.h>

namespace quorvale::model {

TEST(CacheServicesTest, HoldOneRecordUnderSeveralKeysAndConnectionsOfUnknownHosts) {
    AllowedCacheService cache;
    const auto record = std::make_shared<AllowedClass>("192.0.2.1", "example.org", "NL", 1'700'000'000.5, 2460263.426,
                                                       443, 1000, std::int16_t{1});
    cache.allowedMap["192.0.2.1"] = record;
    cache.allowedMap["example.org"] = record;

    cache.allowedMap.at("192.0.2.1")->bytesOut += 24;

    EXPECT_EQ(cache.allowedMap.at("example.org")->bytesOut, 1024);
    EXPECT_EQ(record->dnsName, "example.org");
    EXPECT_EQ(record->port, 443);
    const BlockedClass unknown(ThreatType::None, std::nullopt, std::nullopt, "192.0.2.1");
    EXPECT_EQ(unknown.host, std::nullopt);
    EXPECT_EQ(unknown.country, std::nullopt);
    EXPECT_EQ(unknown.ipAddress, "192.0.2.1");
}

} // namespace quorvale::model
