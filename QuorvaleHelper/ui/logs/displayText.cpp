#include "ui/logs/displayText.hpp"

namespace quorvale::ui::logs {

namespace {

constexpr char16_t replacement = u'\uFFFD';

constexpr char16_t shown(char16_t unit) {
    if (unit < 0x20) {
        return unit == u'\t' ? unit : static_cast<char16_t>(u'\u2400' + unit);
    }
    if (unit == 0x7F) {
        return u'\u2421';
    }
    const auto isControl = unit >= 0x80 && unit < 0xA0;
    const auto changesDirection = unit == u'\u061C' || unit == u'\u200E' || unit == u'\u200F' ||
                                  (unit >= u'\u202A' && unit <= u'\u202E') || (unit >= u'\u2066' && unit <= u'\u2069');
    const auto separatesLines = unit == u'\u2028' || unit == u'\u2029';
    const auto standsForAnObject = unit == u'\uFFFC';
    return isControl || changesDirection || separatesLines || standsForAnObject ? replacement : unit;
}

} // namespace

QString displayText(std::string_view utf8) {
    auto text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    for (auto& unit : text) {
        unit = shown(unit.unicode());
    }
    return text;
}

} // namespace quorvale::ui::logs
