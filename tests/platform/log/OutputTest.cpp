#include "platform/log/Output.hpp"

#include "platform/log/Logger.hpp"

#include <gmock/gmock.h>
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

#include <string>
#include <sys/uio.h>
#include <vector>

namespace {

std::vector<std::vector<std::string>> sent;

} // namespace

/// In the place of the library's, which knows one journal only, the system's.
int sd_journal_sendv(const iovec* fields, int count) {
    auto& entry = sent.emplace_back();
    for (int i = 0; i < count; ++i) {
        entry.emplace_back(static_cast<const char*>(fields[i].iov_base), fields[i].iov_len);
    }
    return 0;
}

namespace quorvale::platform::log {

using testing::ElementsAre;

TEST(OutputTest, GivesTheJournalEachMessageWithItsPriorityIdentityAndFormat) {
    {
        UnifiedLog log(journalOutput());
        const Logger logger("x.y.helper", "default", log);
        logger.info("Started...");
        logger.error("Failed: %{public}s, %s", std::string("two\nlines"), std::string("not to be seen"));
    }
    EXPECT_THAT(sent,
                ElementsAre(ElementsAre("PRIORITY=6", "SUBSYSTEM=x.y.helper", "CATEGORY=default", "FORMAT=Started...",
                                        "MESSAGE=Started..."),
                            ElementsAre("PRIORITY=3", "SUBSYSTEM=x.y.helper", "CATEGORY=default",
                                        "FORMAT=Failed: %{public}s, %s", "MESSAGE=Failed: two\nlines, <private>")));
}

} // namespace quorvale::platform::log
