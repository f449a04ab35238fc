#include "platform/observable/objectDidChange.hpp"

#include "support/waitUntil.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <vector>

namespace quorvale::platform::observable {

namespace {

using testing::ElementsAre;

struct Model final : ObservableObject {
    Published<int> value{*this, 0};
};

} // namespace

TEST(ObjectDidChangeTest, ShowsManyChangesOnceWhenTheyAreMade) {
    queue::MainQueue mainQueue;
    Model model;
    std::vector<int> shown;
    auto subscription = objectDidChange(model, mainQueue, [&] { shown.push_back(model.value.get()); });
    for (const int last : {999, 1999}) {
        for (int value = last - 999; value <= last; ++value) {
            model.value.set(value);
        }
        ASSERT_TRUE(tests::waitUntil([&] { return !shown.empty() && shown.back() == last; }));
    }
    EXPECT_THAT(shown, ElementsAre(999, 1999));
    model.value.set(0);
    bool done = false;
    mainQueue.asyncAfter(queue::MainQueue::Clock::now() + std::chrono::milliseconds(50), [&] { done = true; });
    subscription = {};
    ASSERT_TRUE(tests::waitUntil([&] { return done; }));
    EXPECT_EQ(shown.size(), 2U);
}

} // namespace quorvale::platform::observable
