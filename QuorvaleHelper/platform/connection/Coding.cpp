#include "platform/connection/Coding.hpp"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <string_view>
#include <utility>

namespace quorvale::platform::connection {

namespace {

/// What the variant of a property list holds, in the order of its alternatives.
constexpr std::array variantContents{"s", "x", "d", "b", "ay", "(d)", "av", "a{sv}"};
static_assert(variantContents.size() == std::variant_size_v<decltype(PropertyList::value)>);

/// Appends a value, or a part of one.
template <typename Part>
bool appendPart(sd_bus_message* message, const Part& part) {
    const auto appendNext = [message](const auto& next) { return appendPart(message, next); };
    const auto appendInside = [message](char type, const char* contents, std::predicate auto fill) {
        return sd_bus_message_open_container(message, type, contents) >= 0 && fill() &&
               sd_bus_message_close_container(message) >= 0;
    };
    if constexpr (std::same_as<Part, std::string>) {
        return !part.contains('\0') && sd_bus_message_append(message, "s", part.c_str()) >= 0;
    } else if constexpr (std::same_as<Part, std::int64_t> || std::same_as<Part, double>) {
        return sd_bus_message_append_basic(message, std::integral<Part> ? 'x' : 'd', &part) >= 0;
    } else if constexpr (std::same_as<Part, bool>) {
        return sd_bus_message_append(message, "b", int{part}) >= 0;
    } else if constexpr (std::same_as<Part, Date>) {
        return sd_bus_message_append(message, "(d)", part.secondsSince1970) >= 0;
    } else if constexpr (std::same_as<Part, std::vector<std::byte>>) {
        return sd_bus_message_append_array(message, 'y', part.data(), part.size()) >= 0;
    } else if constexpr (std::same_as<Part, std::optional<std::string>>) {
        return appendInside('a', "s", [&] { return !part || appendNext(*part); });
    } else if constexpr (std::same_as<Part, PropertyList>) {
        const auto* const contents = variantContents[part.value.index()];
        return appendInside('v', contents, [&] { return std::visit(appendNext, part.value); });
    } else if constexpr (std::ranges::range<Part>) {
        const auto* const contents = std::same_as<Part, Dictionary> ? "{sv}" : "v";
        return appendInside('a', contents, [&] { return std::ranges::all_of(part, appendNext); });
    } else {
        static_assert(std::same_as<Part, Dictionary::value_type>);
        return appendInside('e', "sv", [&] { return appendNext(part.first) && appendNext(part.second); });
    }
}

template <typename Result>
constexpr auto as = [](auto&& value) { return Result{std::forward<decltype(value)>(value)}; };

template <typename Basic>
std::optional<Basic> readBasic(sd_bus_message* message, char type) {
    Basic value{};
    return sd_bus_message_read_basic(message, type, static_cast<void*>(&value)) > 0 ? std::optional(value)
                                                                                    : std::nullopt;
}

std::optional<std::string> readText(sd_bus_message* message) {
    return readBasic<const char*>(message, 's').transform(as<std::string>);
}

std::optional<bool> readBoolean(sd_bus_message* message) {
    return readBasic<int>(message, 'b').transform([](int value) { return value != 0; });
}

template <std::integral Integer>
std::optional<PropertyList> readInteger(sd_bus_message* message, char type) {
    const auto number = readBasic<Integer>(message, type);
    return number && std::in_range<std::int64_t>(*number)
               ? std::optional(PropertyList{static_cast<std::int64_t>(*number)})
               : std::nullopt;
}

constexpr std::string_view integerTypes = "ynqiuxt";
constexpr std::array integerReaders{readInteger<std::uint8_t>, readInteger<std::int16_t>,  readInteger<std::uint16_t>,
                                    readInteger<std::int32_t>, readInteger<std::uint32_t>, readInteger<std::int64_t>,
                                    readInteger<std::uint64_t>};

/// Enters the container that comes next, has `readOne` read what it holds, one after the other, and leaves it.
bool readContainer(sd_bus_message* message, char type, const char* contents, std::predicate auto readOne) {
    if (sd_bus_message_enter_container(message, type, contents) <= 0) {
        return false;
    }
    while (sd_bus_message_at_end(message, 0) == 0) {
        if (!readOne()) {
            return false;
        }
    }
    return sd_bus_message_exit_container(message) >= 0;
}

std::optional<PropertyList> readElement(sd_bus_message* message);

std::optional<Dictionary> readDictionary(sd_bus_message* message) {
    Dictionary dictionary;
    const auto readMember = [&] {
        const auto key = readText(message);
        auto value = key ? readElement(message) : std::nullopt;
        return value && (dictionary.insert_or_assign(*key, *std::move(value)), true);
    };
    const auto readEntry = [&] { return readContainer(message, 'e', "sv", readMember); };
    return readContainer(message, 'a', "{sv}", readEntry) ? std::optional(std::move(dictionary)) : std::nullopt;
}

/// What an array, a structure or a variant holds.
std::optional<std::vector<PropertyList>> readElements(sd_bus_message* message, char type) {
    std::vector<PropertyList> elements;
    const auto readOne = [&] {
        auto element = readElement(message);
        return element && (elements.push_back(*std::move(element)), true);
    };
    return readContainer(message, type, nullptr, readOne) ? std::optional(std::move(elements)) : std::nullopt;
}

std::optional<PropertyList> readData(sd_bus_message* message) {
    const void* data = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(message, 'y', &data, &size) < 0) {
        return std::nullopt;
    }
    const auto* const begin = static_cast<const std::byte*>(data);
    return PropertyList{std::vector(begin, begin + size)};
}

/// Any of the forms that `PropertyList` names, in a variant or plain.
std::optional<PropertyList> readElement(sd_bus_message* message) {
    char type = 0;
    const char* inside = nullptr;
    sd_bus_message_peek_type(message, &type, &inside);
    const std::string_view contents = inside ? inside : "";
    if (const auto integer = integerTypes.find(type); integer != std::string_view::npos) {
        return integerReaders[integer](message, type);
    }
    switch (type) {
    case 's':
        return readText(message).transform(as<PropertyList>);
    case 'b':
        return readBoolean(message).transform(as<PropertyList>);
    case 'd':
        return readBasic<double>(message, type).transform(as<PropertyList>);
    case 'a':
        if (contents == "{sv}") {
            return readDictionary(message).transform(as<PropertyList>);
        }
        if (contents == "y") {
            return readData(message);
        }
        // An empty array is judged by its type, too.
        return contents.find_first_of("{ogh") == 0 ? std::nullopt
                                                   : readElements(message, type).transform(as<PropertyList>);
    case 'r':
        return contents != "d" ? std::nullopt : readElements(message, type).transform([](const auto& elements) {
            return PropertyList{Date{std::get<double>(elements.front().value)}};
        });
    case 'v':
        return readElements(message, type).transform([](auto&& elements) { return std::move(elements.front()); });
    default:
        return std::nullopt;
    }
}

} // namespace

bool append(sd_bus_message* message, const Value& value) {
    return std::visit([message](const auto& part) { return appendPart(message, part); }, value);
}

std::optional<Value> read(sd_bus_message* message, Type type) {
    switch (type) {
    case Type::text:
        return readText(message).transform(as<Value>);
    case Type::boolean:
        return readBoolean(message).transform(as<Value>);
    case Type::number:
        return readBasic<double>(message, 'd').transform(as<Value>);
    case Type::dictionary:
        return readDictionary(message).transform(as<Value>);
    case Type::optionalText: {
        std::optional<std::string> text;
        const auto readOne = [&] { return !text && (text = readText(message)); };
        return readContainer(message, 'a', "s", readOne) ? std::optional(Value(std::move(text))) : std::nullopt;
    }
    }
    return std::nullopt;
}

} // namespace quorvale::platform::connection
