#include "ui/logs/LogStore.hpp"

#include "support/RecordedLog.hpp"
#include "ui/logs/UnifiedLogReader.hpp"

#include <gmock/gmock.h>

namespace quorvale::ui::logs {

namespace {

using platform::log::Logger;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string own = "com.quorvale.QuorvaleHelper";

/// The real reader, whose steps can be made to fail.
class FailingReader final : public LogReader {
public:
    explicit FailingReader(const platform::log::EntryStore& store) : reader_(store) {}

    std::expected<void, LogError> open() override {
        return openError ? std::unexpected(LogError{*openError}) : reader_.open();
    }

    std::expected<Entries, LogError> entries(std::chrono::duration<double> sinceLatestBoot) override {
        position = sinceLatestBoot;
        return entriesError ? std::unexpected(LogError{*entriesError}) : reader_.entries(sinceLatestBoot);
    }

    std::optional<std::string> openError;
    std::optional<std::string> entriesError;
    std::chrono::duration<double> position{};

private:
    UnifiedLogReader reader_;
};

/// The lines' text after their dates.
std::vector<std::string> undated(const LogStore& store) {
    std::vector<std::string> lines;
    const auto& entries = *store.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto line = entries[i];
        lines.emplace_back(line.substr(line.find("] [") + 2));
    }
    return lines;
}

class LogStoreTest : public testing::Test {
protected:
    void write(const std::string& subsystem, const std::string& message) {
        Logger(subsystem, "default", log_).info("%{public}s", message);
    }

    void writeAt(std::chrono::system_clock::time_point date, std::string_view message) {
        log_.store().append({date, platform::log::Level::info, log_.store().identity({own, "link"}), message});
    }

    platform::log::UnifiedLog log_{nullptr, std::size_t{1} << 20};
    Logger logger_{own, "default", log_};
    FailingReader* reader_ = new FailingReader(log_.store());
    LogStore store_{{.subsystems = {own, own + ".filter", own + ".helper"},
                     .logger = logger_,
                     .reader = std::unique_ptr<LogReader>(reader_),
                     .displayDate = [] { return DisplayDate(QLocale(QStringLiteral("en_US")), QTimeZone::utc()); }}};
};

} // namespace

TEST_F(LogStoreTest, ListsTheMessagesOfItsThreeSubsystemsOnly) {
    EXPECT_THAT(undated(store_), IsEmpty()) << "nothing is read before it is asked to";
    for (const auto& subsystem : {own, own + ".filter", own + ".other", own + ".helper", std::string(),
                                  std::string("com.quorvale.quorvalehelper"), own + " ", own}) {
        write(subsystem, "of " + subsystem);
    }
    store_.loadEntries();
    EXPECT_THAT(undated(store_), ElementsAre("[default] of " + own, "[default] of " + own + ".filter",
                                             "[default] of " + own + ".helper", "[default] of " + own));
    EXPECT_EQ(reader_->position.count(), 1.0);
}

TEST_F(LogStoreTest, KeepsTheOrderOfTheLogWithinAMinuteAndMessagesWhole) {
    using namespace std::chrono;
    const auto minute = sys_days(year(2026) / 11 / 16) + 15h + 47min;
    writeAt(minute + 30s, "later");
    writeAt(minute, "earlier, written after");
    writeAt(minute + 59s, "two\nlines\n");
    writeAt(minute + 60s, "");
    store_.loadEntries();
    const auto& lines = *store_.entries();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], "[11/16/2026, 3:47 PM] [link] later");
    EXPECT_EQ(lines[2], "[11/16/2026, 3:47 PM] [link] two\nlines\n");
    EXPECT_EQ(lines.text(), "[11/16/2026, 3:47 PM] [link] later\n"
                            "[11/16/2026, 3:47 PM] [link] earlier, written after\n"
                            "[11/16/2026, 3:47 PM] [link] two\nlines\n\n"
                            "[11/16/2026, 3:48 PM] [link] ");
}

TEST_F(LogStoreTest, ReplacesTheWholeListInOneChange) {
    int changes = 0;
    const auto subscription = store_.objectWillChange([&] { ++changes; });
    write(own, "first");
    store_.loadEntries();
    const auto before = store_.entries();
    write(own, "second");
    store_.loadEntries();
    EXPECT_THAT(undated(store_), ElementsAre("[default] first", "[default] second"));
    EXPECT_EQ(before->size(), 1U) << "a list once published stays as it is";
    EXPECT_EQ(changes, 2);

    // What nobody listed replaces the list by an empty one.
    for (int i = 0; i < 40'000; ++i) {
        write("another", "drives everything else out of the store's budget");
    }
    store_.loadEntries();
    EXPECT_THAT(undated(store_), IsEmpty());
}

TEST_F(LogStoreTest, KeepsItsLinesWhenALoadFailsAndListsTheErrorNextTime) {
    write(own, "first");
    store_.loadEntries();
    int changes = 0;
    const auto subscription = store_.objectWillChange([&] { ++changes; });
    reader_->openError = "The log is locked 100%";
    reader_->entriesError = "The log is torn";
    store_.loadEntries();
    reader_->openError.reset();
    store_.loadEntries();
    EXPECT_THAT(undated(store_), ElementsAre("[default] first"));
    EXPECT_EQ(changes, 0);

    reader_->entriesError.reset();
    store_.loadEntries();
    EXPECT_THAT(undated(store_),
                ElementsAre("[default] first", "[default] The log is locked 100%", "[default] The log is torn"));
}

} // namespace quorvale::ui::logs
