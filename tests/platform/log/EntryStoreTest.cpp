#include "platform/log/EntryStore.hpp"

#include <gmock/gmock.h>

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

TEST(EntryStoreTest, KeepsTheNewestEntriesWithinItsBudget) {
    constexpr std::size_t budget = 64 << 10;
    EntryStore store(budget);
    const auto& identity = store.identity({"s", "c"});
    const auto append = [&](std::string_view text) { store.append({{}, Level::info, identity, text}); };
    for (int number = 0; number < 10'000; ++number) {
        append(std::to_string(number));
    }
    const auto kept = messagesOf(store);
    ASSERT_FALSE(kept.empty());
    EXPECT_EQ(kept.back(), "9999");
    EXPECT_EQ(kept.front(), std::to_string(10'000 - kept.size())) << "no entry in between is missing";
    EXPECT_LT(kept.size() * 32, budget);
    EXPECT_GT(kept.size() * 48, budget / 16 * 14);

    append(std::string(budget / 2, 'x'));
    EXPECT_EQ(messagesOf(store).back().size(), budget / 2);
    EXPECT_GT(messagesOf(store).size(), 1U);
}

TEST(EntryStoreTest, FillsItsBudgetToTheLastByteAndNoMore) {
    constexpr std::size_t budget = 64 << 10;
    constexpr std::size_t bookkeeping = 32;
    EntryStore store(budget);
    const auto& identity = store.identity({"s", "c"});
    const auto countWith = [&](std::size_t size) {
        store.append({{}, Level::info, identity, std::string(size - bookkeeping, 'x')});
        return messagesOf(store).size();
    };
    // Sixteen chunks of four.
    for (std::size_t count = 1; count <= 64; ++count) {
        EXPECT_EQ(countWith(budget / 64), count);
    }
    EXPECT_EQ(countWith(budget / 64), 61U);
    EXPECT_EQ(countWith(budget + 1), 61U) << "what alone exceeds the budget is not kept";
    EXPECT_EQ(countWith(budget), 1U);
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
