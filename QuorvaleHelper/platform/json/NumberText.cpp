#include "platform/json/NumberText.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <system_error>

namespace quorvale::platform::json {

namespace {

constexpr std::string_view decimalDigits = "0123456789";

bool isOfNumbers(char c) {
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

/// The string that a text begins with, up to the end of the text when nothing ends it.
std::string_view firstString(std::string_view text) {
    auto quote = text.find('"', 1);
    // A quote after an odd number of backslashes is escaped.
    while (quote != std::string_view::npos && (quote - text.find_last_not_of('\\', quote - 1)) % 2 == 0) {
        quote = text.find('"', quote + 1);
    }
    return quote == std::string_view::npos ? text : text.substr(0, quote + 1);
}

/// What follows the letter of an exponent. Beyond `bound`, which no text is long enough to make up for, it is that.
std::int64_t exponentOf(std::string_view text) {
    constexpr std::int64_t bound = std::int64_t{1} << 60;
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    auto exponent = text.starts_with('-') ? -bound : bound;
    std::from_chars(text.begin(), text.end(), exponent);
    return std::clamp(exponent, -bound, bound);
}

} // namespace

bool isNumber(std::string_view text) {
    const auto skipOneOf = [&text](std::string_view characters) {
        const bool found = !text.empty() && characters.contains(text.front());
        text.remove_prefix(found ? 1 : 0);
        return found;
    };
    const auto skipDigits = [&text] {
        const auto count = std::min(text.find_first_not_of(decimalDigits), text.size());
        text.remove_prefix(count);
        return count > 0;
    };
    skipOneOf("-");
    if (!skipOneOf("0") && !skipDigits()) {
        return false;
    }
    if (skipOneOf(".") && !skipDigits()) {
        return false;
    }
    if (skipOneOf("eE")) {
        skipOneOf("+-");
        if (!skipDigits()) {
            return false;
        }
    }
    return text.empty();
}

std::string_view firstPiece(std::string_view text) {
    if (text.front() == '"') {
        return firstString(text);
    }
    const auto* const end = isOfNumbers(text.front())
                                ? std::ranges::find_if_not(text, isOfNumbers)
                                : std::ranges::find_if(text, [](char c) { return c == '"' || isOfNumbers(c); });
    return {text.begin(), end};
}

std::string_view numberAfter(std::size_t count, std::string_view text) {
    while (!text.empty()) {
        const auto piece = firstPiece(text);
        if (isNumber(piece) && count-- == 0) {
            return piece;
        }
        text.remove_prefix(piece.size());
    }
    return {};
}

std::expected<std::int64_t, NotAnInteger> integerOf(std::string_view number) {
    const auto mantissa = number.substr(0, number.find_first_of("eE"));
    const auto point = std::min(mantissa.find('.'), mantissa.size());
    auto exponent = mantissa.size() < number.size() ? exponentOf(number.substr(mantissa.size() + 1)) : 0;

    // digits * 10^exponent, without zeros at either end.
    std::string digits(mantissa.substr(0, point));
    if (point < mantissa.size()) {
        digits += mantissa.substr(point + 1);
        exponent -= static_cast<std::int64_t>(mantissa.size() - point - 1);
    }
    const auto first = digits.find_first_of("123456789");
    if (first == std::string::npos) {
        return 0;
    }
    const auto end = digits.find_last_not_of('0') + 1;
    exponent += static_cast<std::int64_t>(digits.size() - end);
    digits = digits.substr(first, end - first);
    if (exponent < 0) {
        return std::unexpected(NotAnInteger::IsNotWhole);
    }
    if (exponent > std::numeric_limits<std::int64_t>::digits10) {
        return std::unexpected(NotAnInteger::IsOutOfRange);
    }
    digits.append(static_cast<std::size_t>(exponent), '0');
    digits.insert(0, number.starts_with('-') ? "-" : "");
    std::int64_t value = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc{}) {
        return std::unexpected(NotAnInteger::IsOutOfRange);
    }
    return value;
}

} // namespace quorvale::platform::json
