#include "platform/log/EntryStore.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace quorvale::platform::log {

namespace {

std::vector<std::string> messagesOf(const EntryStore& store) {
    std::vector<std::string> messages;
    store.snapshot().walk([&](const Entry& entry) { messages.emplace_back(entry.composedMessage); });
    return messages;
}

} // namespace

TEST(EntryStoreTest, KeepsTheNewestEntriesInItsBudgetToTheLastByte) {
    constexpr std::size_t budget = 64 << 10;
    constexpr std::size_t bookkeeping = 32;
    EntryStore store(budget);
    const auto& identity = store.identity({"s", "c"});
    int last = 0;
    const auto keptWith = [&](std::size_t size) {
        auto message = std::to_string(++last);
        message.resize(size - bookkeeping, ' ');
        store.append({{}, Level::info, identity, message});
        std::vector<int> kept;
        std::ranges::transform(messagesOf(store), std::back_inserter(kept),
                               [](const std::string& text) { return std::stoi(text); });
        return kept;
    };
    // Sixteen chunks of four.
    std::vector<int> expected;
    while (last < 200) {
        if (expected.size() == 64) {
            expected.erase(expected.begin(), expected.begin() + 4);
        }
        expected.push_back(last + 1);
        ASSERT_EQ(keptWith(budget / 64), expected);
    }
    EXPECT_EQ(keptWith(budget + 1), expected) << "what alone exceeds the budget is not kept";
    expected.erase(expected.begin(), expected.begin() + 32);
    expected.push_back(last + 1);
    EXPECT_EQ(keptWith(budget / 2), expected);
    EXPECT_EQ(keptWith(budget).size(), 1U);
}

TEST(EntryStoreTest, WalksWhatWasThereWhileOthersWrite) {
    EntryStore store(std::size_t{1} << 20);
    const auto& identity = store.identity({"s", "c"});
    store.append({{}, Level::info, identity, "before"});

    // The walk is held up until the writers, who must not be, have replaced everything that it walks over.
    std::vector<std::string> walked;
    store.snapshot().walk([&](const Entry& entry) {
        std::vector<std::jthread> writers;
        writers.reserve(4);
        for (int writer = 0; writer < 4; ++writer) {
            writers.emplace_back([&] {
                for (int number = 0; number < 20'000; ++number) {
                    store.append({{}, Level::info, identity, std::to_string(number)});
                }
            });
        }
        writers.clear();
        walked.emplace_back(entry.composedMessage);
    });
    EXPECT_THAT(walked, testing::ElementsAre("before"));
    const auto now = messagesOf(store);
    EXPECT_NE(now.front(), "before");
    EXPECT_EQ(now.back(), "19999");
}

} // namespace quorvale::platform::log
