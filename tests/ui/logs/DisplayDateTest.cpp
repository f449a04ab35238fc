#include "ui/logs/DisplayDate.hpp"

#include <QDateTime>
#include <gtest/gtest.h>

namespace quorvale::ui::logs {

namespace {

std::chrono::system_clock::time_point utc(int year, int month, int day, int hour, int minute, int second = 0) {
    using namespace std::chrono;
    return sys_days(std::chrono::year(year) / month / day) + hours(hour) + minutes(minute) + seconds(second);
}

DisplayDate dateIn(const char* locale, const char* zone) {
    return DisplayDate(QLocale(QString::fromLatin1(locale)), QTimeZone(zone));
}

} // namespace

TEST(DisplayDateTest, FollowsLocaleAndTimeZone) {
    struct Case {
        const char* locale;
        const char* zone;
        std::chrono::system_clock::time_point date;
        const char* text;
    };

    const auto afternoon = utc(2026, 11, 16, 15, 47, 59);
    for (const auto& [locale, zone, date, text] : std::initializer_list<Case>{
             {"en_US", "UTC", afternoon, "11/16/2026, 3:47 PM"},
             {"de_DE", "UTC", afternoon, "16.11.2026, 15:47"},
             {"de_DE", "Europe/Berlin", utc(2026, 12, 31, 23, 0), "01.01.2027, 00:00"},
             {"en_US", "America/New_York", utc(2026, 1, 1, 0, 30), "12/31/2025, 7:30 PM"},
             {"en_GB", "Asia/Kathmandu", afternoon, "16/11/2026, 21:32"},
             {"zh_TW", "UTC", afternoon, "2026/11/16, 下午3:47"},
             {"C", "UTC", afternoon, "11/16/2026, 3:47 PM"},
             {"en_US", "UTC", utc(1969, 12, 31, 23, 59, 59), "12/31/1969, 11:59 PM"},
         }) {
        auto display = dateIn(locale, zone);
        EXPECT_EQ(display.text(date), text) << locale << ' ' << zone;
    }
}

TEST(DisplayDateTest, FollowsTheClockChangeForwardsAndBackwards) {
    auto display = dateIn("de_DE", "Europe/Berlin");
    for (const auto& [date, text] : {std::pair{utc(2026, 3, 29, 0, 59, 59), "29.03.2026, 01:59"},
                                     {utc(2026, 3, 29, 1, 0), "29.03.2026, 03:00"},
                                     {utc(2026, 10, 25, 0, 59), "25.10.2026, 02:59"},
                                     {utc(2026, 10, 25, 1, 0), "25.10.2026, 02:00"},
                                     {utc(2026, 3, 29, 0, 59), "29.03.2026, 01:59"}}) {
        EXPECT_EQ(display.text(date), text);
    }
}

} // namespace quorvale::ui::logs
