#include "platform/log/Logger.hpp"

#include "platform/log/LogPipe.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quorvale::platform::log {

namespace {

struct Line {
    Level level;
    std::string subsystem;
    std::string category;
    std::string message;
    bool operator==(const Line&) const = default;
};

std::vector<Line> linesOf(const EntryStore& store) {
    std::vector<Line> lines;
    store.snapshot().walk([&](const Entry& entry) {
        lines.push_back(
            {entry.level, entry.identity.subsystem, entry.identity.category, std::string(entry.composedMessage)});
    });
    return lines;
}

struct Failure {
    [[nodiscard]] std::string description() const { return "must not be seen"; }
};

} // namespace

TEST(LoggerTest, ComposesEachPlaceholder) {
    UnifiedLog log(nullptr);
    const Logger logger("x.y.helper", "default", log);
    logger.info("plain");
    logger.info("%{public}s|%{bool}d|%{bool}d", std::string("100 %s %{bool}d"), true, false);
    logger.error("%s and %@", std::string("must not be seen"), Failure{});
    EXPECT_THAT(linesOf(log.store()),
                testing::ElementsAre(Line{Level::info, "x.y.helper", "default", "plain"},
                                     Line{Level::info, "x.y.helper", "default", "100 %s %{bool}d|true|false"},
                                     Line{Level::error, "x.y.helper", "default", "<private> and <private>"}));
}

TEST(LoggerTest, WritesOneLineAnEntryWhateverTheTextHolds) {
    LogPipe pipe;
    const Logger logger("x.y.helper", "default", pipe.log());
    logger.error("%{public}s", std::string("two\nlines\tand \x1b[31mred\x7f ⚠️ ") + '\0');
    logger.info("end");
    EXPECT_THAT(pipe.line(), testing::EndsWith(R"( x.y.helper default error two\nlines\tand \x1b[31mred\x7f ⚠️ \x00)"));
    EXPECT_THAT(pipe.line(), testing::EndsWith(" x.y.helper default info end"));
}

TEST(LoggerTest, DatesEachLineInUTCToTheMillisecondAlsoWhenTheClockIsSetBack) {
    LogPipe pipe;
    const Identity identity{"x.y.helper", "default"};
    const std::pair<std::int64_t, const char*> cases[] = {{1'772'323'199'987, "2026-02-28T23:59:59.987Z"},
                                                          {1'772'323'199'999, "2026-02-28T23:59:59.999Z"},
                                                          {1'772'323'200'000, "2026-03-01T00:00:00.000Z"},
                                                          {1'772'323'199'040, "2026-02-28T23:59:59.040Z"},
                                                          {-1, "1969-12-31T23:59:59.999Z"}};
    for (const auto& [milliseconds, text] : cases) {
        const std::chrono::sys_time date{std::chrono::milliseconds(milliseconds)};
        pipe.log().write({date, Level::info, identity, "Started..."});
        EXPECT_EQ(pipe.line(), text + std::string(" x.y.helper default info Started..."));
    }
}

} // namespace quorvale::platform::log
