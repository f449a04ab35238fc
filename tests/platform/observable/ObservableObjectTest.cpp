#include "platform/observable/ObservableObject.hpp"

#include "support/waitUntil.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorvale::platform::observable {

namespace {

using testing::ElementsAre;
using testing::Pair;

struct Model final : ObservableObject {
    Published<int> value{*this, 0};
    Published<std::string> text{*this, ""};
};

} // namespace

TEST(ObservableObjectTest, NotifiesEachObserverInOrderBeforeEachAssignment) {
    Model model;
    std::vector<std::pair<char, int>> calls;
    const auto one = model.objectWillChange([&] { calls.emplace_back('a', model.value.get()); });
    const auto two = model.objectWillChange([&] { calls.emplace_back('b', model.value.get()); });
    model.value.set(1);
    model.value.set(1);
    model.text.set("x");
    EXPECT_THAT(calls, ElementsAre(Pair('a', 0), Pair('b', 0), Pair('a', 1), Pair('b', 1), Pair('a', 1), Pair('b', 1)));
    EXPECT_EQ(model.value.get(), 1);
    EXPECT_EQ(model.text.get(), "x");
}

TEST(ObservableObjectTest, EndsARegistrationWithItsSubscriptionWhichItMayEndBefore) {
    int calls = 0;
    Subscription longer;
    {
        Model model;
        longer = model.objectWillChange([] {});
        {
            auto subscription = model.objectWillChange([&calls] { ++calls; });
            const auto moved = std::move(subscription);
            model.value.set(1);
        }
        model.value.set(2);
    }
    EXPECT_EQ(calls, 1);
}

TEST(ObservableObjectTest, LetsObserversDropAndMakeRegistrations) {
    Model model;
    std::string calls;
    std::optional<Subscription> first;
    std::optional<Subscription> second;
    std::optional<Subscription> added;
    first = model.objectWillChange([&] {
        calls += '1';
        second.reset();
        added = model.objectWillChange([&calls] { calls += '3'; });
        first.reset();
    });
    second = model.objectWillChange([&calls] { calls += '2'; });
    model.value.set(1);
    EXPECT_EQ(calls, "1");
    model.value.set(2);
    EXPECT_EQ(calls, "13");
}

TEST(ObservableObjectTest, ShowsManyChangesOnceWhenTheyAreMade) {
    queue::MainQueue mainQueue;
    Model model;
    std::vector<int> shown;
    auto subscription = model.objectDidChange(mainQueue, [&] { shown.push_back(model.value.get()); });
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
