#include "platform/log/LogPipe.hpp"
#include "platform/log/Logger.hpp"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quorvale::platform::log {

namespace {

using namespace std::chrono_literals;

std::string lastWord(std::string_view line) {
    return std::string(line.substr(line.rfind(' ') + 1));
}

} // namespace

TEST(UnifiedLogTest, KeepsNobodyWaitingForItsReaderAndLosesNothingMeanwhile) {
    for (const int writeFlags : {0, O_NONBLOCK}) {
        LogPipe pipe(writeFlags);
        const Logger logger("s", "c", pipe.log());
        const std::string longLine(100'000, 'x');
        constexpr std::size_t writers = 4;
        constexpr int perWriter = 2000;
        {
            std::vector<std::jthread> threads;
            for (std::size_t writer = 0; writer < writers; ++writer) {
                threads.emplace_back([&, writer] {
                    logger.info("%{public}s", longLine);
                    for (int number = 0; number < perWriter; ++number) {
                        logger.info("%{public}s", std::to_string(writer) + ":" + std::to_string(number));
                    }
                });
            }
        }
        EXPECT_FALSE(pipe.log().flush(1ms)) << "nobody has read";

        std::vector<int> next(writers);
        std::size_t longLines = 0;
        for (std::size_t i = 0; i < writers * (perWriter + 1); ++i) {
            const auto text = lastWord(pipe.line());
            const auto colon = text.find(':');
            if (colon == std::string::npos) {
                longLines += text == longLine ? 1 : 0;
                continue;
            }
            const auto writer = std::stoul(text.substr(0, colon));
            ASSERT_EQ(std::stoi(text.substr(colon + 1)), next.at(writer)++);
        }
        EXPECT_THAT(next, testing::Each(perWriter));
        EXPECT_EQ(longLines, writers);
        EXPECT_TRUE(pipe.log().flush(20s));

        pipe.closeReadEnd();
        logger.info("to nobody");
        EXPECT_TRUE(pipe.log().flush(20s)) << "what can't be written is lost, and keeps nothing up";
    }
}

TEST(UnifiedLogTest, SaysWhereAndHowMuchIsLostToAReaderWhoIsTooSlow) {
    constexpr int count = 20'000;
    LogPipe pipe(0, std::size_t{64} << 10);
    const Logger logger("s", "c", pipe.log());
    for (int number = 0; number < count; ++number) {
        logger.info("number %{public}s", std::to_string(number));
    }
    int lost = 0;
    for (int next = 0; next < count;) {
        const auto line = pipe.line();
        if (const auto at = line.find(" log lines were lost"); at != std::string::npos) {
            ASSERT_THAT(line, testing::HasSubstr(" s c error "));
            const auto missing = std::stoi(lastWord(line.substr(0, at)));
            next += missing;
            lost += missing;
        } else {
            ASSERT_EQ(lastWord(line), std::to_string(next++));
        }
    }
    EXPECT_GT(lost, count / 2);
}

} // namespace quorvale::platform::log
