#include "platform/log/Logger.hpp"

#include "platform/log/LogPipe.hpp"

#include <gmock/gmock.h>

#include <regex>
#include <string>
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
    logger.info("Started...");
    logger.error("%{public}s", std::string("two\nlines\tand \x1b[31mred\x7f ⚠️ ") + '\0');
    logger.info("end");

    const auto first = pipe.line();
    const std::string time = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)";
    EXPECT_TRUE(std::regex_match(first, std::regex(time + R"( x\.y\.helper default info Started\.\.\.)"))) << first;
    EXPECT_THAT(pipe.line(), testing::EndsWith(R"( x.y.helper default error two\nlines\tand \x1b[31mred\x7f ⚠️ \x00)"));
    EXPECT_THAT(pipe.line(), testing::EndsWith(" x.y.helper default info end"));
}

} // namespace quorvale::platform::log
