#include "model/GeoIpRepository.hpp"

#include <gmock/gmock.h>

#include <future>
#include <vector>

namespace quorvale::model {

using testing::ElementsAre;

TEST(GeoIpRepositoryTest, RunsItsStorageWorkInOrderOnItsOwnQueue) {
    const auto repository = std::make_shared<GeoIpRepository>();
    const GeoIpRepository other;
    EXPECT_NE(repository->geoStorageQueue, other.geoStorageQueue);
    std::vector<int> ran;
    std::promise<void> done;
    for (const int name : {1, 2, 3}) {
        repository->geoStorageQueue->async([&ran, name] { ran.push_back(name); });
    }
    repository->geoStorageQueue->async([&done] { done.set_value(); });
    done.get_future().wait();
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
}

} // namespace quorvale::model
