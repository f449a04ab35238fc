#pragma once

#include <QLocale>
#include <QString>
#include <QTimeZone>

#include <array>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string>

namespace quorvale::ui::logs {

/// Writes moments as a numeric date with a four-digit year and a time of hours and minutes: in the English of the
/// United States 11/16/2026, 3:47 PM. A process without a locale ("C") has that one. One thread at a time.
class DisplayDate {
public:
    explicit DisplayDate(const QLocale& locale = QLocale::system(),
                         const QTimeZone& timeZone = QTimeZone::systemTimeZone());

    /// UTF-8, valid until the next call.
    const std::string& text(std::chrono::system_clock::time_point date);

private:
    void findOffset(std::int64_t utc);
    void compose();

    QLocale locale_;
    QTimeZone timeZone_;
    QString dateFormat_;
    QString timeFormat_;

    // Entries come in order of time, most of them in the same minute: what was worked out last is kept. The offset
    // is that of the seconds since 1970 from `offsetSince_` to before `offsetUntil_`.
    std::int64_t offset_ = 0;
    std::int64_t offsetSince_ = 0;
    std::int64_t offsetUntil_ = 0;
    std::int64_t minute_ = std::numeric_limits<std::int64_t>::min();
    std::int64_t day_ = std::numeric_limits<std::int64_t>::min();
    std::string dayText_;
    std::array<std::string, std::size_t{24} * 60> timeTexts_;
    std::string text_;
};

} // namespace quorvale::ui::logs
