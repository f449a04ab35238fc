#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace quorvale::platform::log {

/// Stands for an argument of the placeholder for objects. What it describes is private, so nothing of it is kept.
struct PrivateObject {};

/// An argument of a message as the composing code sees it.
using Argument = std::variant<bool, std::string_view, PrivateObject>;

/// The alternative of `Argument` that a value of `Type` becomes.
template <typename Type>
consteval std::size_t argumentIndex() {
    if constexpr (std::same_as<Type, bool>) {
        return 0;
    } else if constexpr (std::convertible_to<const Type&, std::string_view>) {
        return 1;
    } else {
        static_assert(
            requires(const Type& object) {
                { object.description() } -> std::convertible_to<std::string>;
            }, "a log argument is a Boolean, a text or an object with a description");
        return 2;
    }
}

template <typename Type>
constexpr Argument argument(const Type& value) {
    if constexpr (argumentIndex<Type>() == 2) {
        return PrivateObject{};
    } else {
        return Argument(std::in_place_index<argumentIndex<Type>()>, value);
    }
}

/// The placeholders of a format and what each makes of its argument: "%{public}s" shows a text, "%{bool}d" a
/// Boolean as true or false; the text of "%s" and the object of "%@" are private and show as "<private>".
struct Placeholder {
    std::string_view spelling;
    std::size_t argument; ///< The alternative of `Argument` it takes.
    bool isPrivate;
};

inline constexpr std::array placeholders{
    Placeholder{"%{public}s", 1, false},
    Placeholder{"%{bool}d", 0, false},
    Placeholder{"%s", 1, true},
    Placeholder{"%@", 2, true},
};

/// The placeholder at the start of `text`, or none.
constexpr const Placeholder* placeholderAt(std::string_view text) {
    for (const auto& placeholder : placeholders) {
        if (text.starts_with(placeholder.spelling)) {
            return &placeholder;
        }
    }
    return nullptr;
}

/// A format whose placeholders were checked against the argument types when the program was compiled.
template <typename... Arguments>
class FormatString {
public:
    template <std::size_t size>
    consteval FormatString(const char (&literal)[size]) : text_(literal) { // NOLINT: implicit by design
        const std::string_view text(literal, size - 1);
        constexpr std::array<std::size_t, sizeof...(Arguments)> given{argumentIndex<Arguments>()...};
        std::size_t count = 0;
        for (std::size_t at = 0; at < text.size(); ++at) {
            if (text[at] != '%') {
                continue;
            }
            const auto* const placeholder = placeholderAt(text.substr(at));
            if (!placeholder) {
                throw "unknown placeholder";
            }
            if (count >= given.size() || given[count++] != placeholder->argument) {
                throw "the argument is missing or of another type";
            }
        }
        if (count != given.size()) {
            throw "more arguments than placeholders";
        }
    }

    /// The literal that it was made of.
    [[nodiscard]] constexpr const char* text() const { return text_; }

private:
    const char* text_;
};

} // namespace quorvale::platform::log
