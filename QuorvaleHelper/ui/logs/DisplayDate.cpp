#include "ui/logs/DisplayDate.hpp"

#include <QDateTime>

namespace quorvale::ui::logs {

namespace {

constexpr std::int64_t minutesOfADay = std::int64_t{24} * 60;
constexpr auto twoDigitYear = "yy";

/// Division that rounds down, also before 1970.
constexpr std::int64_t quotient(std::int64_t dividend, std::int64_t divisor) {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

QLocale known(const QLocale& locale) {
    const auto isC = locale.dateFormat(QLocale::ShortFormat) == QLocale::c().dateFormat(QLocale::ShortFormat);
    return isC ? QLocale(QLocale::English, QLocale::UnitedStates) : locale;
}

/// Newer locale data has spaces of several kinds, and marks of direction, which mean nothing in a line of its own.
std::string plain(QString text) {
    for (const char16_t space : {u'\u00A0', u'\u202F', u'\u2009'}) {
        text.replace(QChar(space), u' ');
    }
    for (const char16_t mark : {u'\u200E', u'\u200F', u'\u061C'}) {
        text.remove(QChar(mark));
    }
    return text.toStdString();
}

/// Qt leaves the upper halves of the vector registers in use when it works with time zones. Until they are cleared,
/// some processors run all code without AVX, such as ours, at a third of its speed.
void clearVectorRegisters() {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx")) {
        asm volatile("vzeroupper");
    }
#endif
}

} // namespace

DisplayDate::DisplayDate(const QLocale& locale, const QTimeZone& timeZone)
    : locale_(known(locale)),
      timeZone_(timeZone),
      dateFormat_(locale_.dateFormat(QLocale::ShortFormat)),
      timeFormat_(locale_.timeFormat(QLocale::ShortFormat)) {
    if (const auto year = QLatin1String(twoDigitYear); dateFormat_.count(u'y') == year.size()) {
        dateFormat_.replace(year, QLatin1String("yyyy"));
    }
    // The parts of a day, such as "in the afternoon", are the locale data's; Qt would show the letter for them.
    timeFormat_.replace(u'B', QLatin1String("AP"));
}

const std::string& DisplayDate::text(std::chrono::system_clock::time_point date) {
    const auto utc = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
    if (utc < offsetSince_ || utc >= offsetUntil_) {
        findOffset(utc);
    }
    if (const auto minute = quotient(utc + offset_, 60); minute != minute_) {
        minute_ = minute;
        compose();
    }
    return text_;
}

void DisplayDate::findOffset(std::int64_t utc) {
    const auto moment = QDateTime::fromSecsSinceEpoch(utc, QTimeZone::utc());
    const auto next = timeZone_.nextTransition(moment).atUtc;
    offset_ = timeZone_.offsetFromUtc(moment);
    offsetSince_ = utc;
    offsetUntil_ = next.isValid() ? next.toSecsSinceEpoch() : std::numeric_limits<std::int64_t>::max();
    clearVectorRegisters();
}

void DisplayDate::compose() {
    const auto day = quotient(minute_, minutesOfADay);
    const auto minuteOfDay = minute_ - day * minutesOfADay;
    if (day != day_) {
        day_ = day;
        dayText_ = plain(locale_.toString(QDate(1970, 1, 1).addDays(day), dateFormat_)) + ", ";
    }
    auto& time = timeTexts_[static_cast<std::size_t>(minuteOfDay)];
    if (time.empty()) {
        const QTime clock(static_cast<int>(minuteOfDay / 60), static_cast<int>(minuteOfDay % 60));
        time = plain(locale_.toString(clock, timeFormat_));
    }
    text_.assign(dayText_).append(time);
}

} // namespace quorvale::ui::logs
