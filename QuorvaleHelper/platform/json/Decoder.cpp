#include "platform/json/Decoder.hpp"

#include "platform/json/NumberText.hpp"

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <string>
#include <utility>
#include <vector>

namespace quorvale::platform::json {

namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

std::string_view typeName(element_type type) {
    switch (type) {
    case element_type::ARRAY:
        return "an array";
    case element_type::OBJECT:
        return "an object";
    case element_type::STRING:
        return "a string";
    case element_type::BOOL:
        return "a boolean";
    case element_type::NULL_VALUE:
        return "null";
    case element_type::INT64:
    case element_type::UINT64:
    case element_type::DOUBLE:
        break;
    }
    return "a number";
}

template <typename Value>
element elementOf(const Value& value) {
    return std::bit_cast<element>(value);
}

/// Adds the numbers that stand in `within` before `wanted` to `count`; whether it is there.
bool countNumbersBefore(element wanted, element within, std::size_t& count) {
    using Handle = std::array<std::byte, sizeof(element)>;
    const auto isIn = [&](element inner) { return countNumbersBefore(wanted, inner, count); };
    switch (within.type()) {
    case element_type::ARRAY:
        return std::ranges::any_of(simdjson::dom::array(within), isIn);
    case element_type::OBJECT:
        return std::ranges::any_of(simdjson::dom::object(within), isIn, &simdjson::dom::key_value_pair::value);
    case element_type::INT64:
    case element_type::UINT64:
    case element_type::DOUBLE:
        if (std::bit_cast<Handle>(within) == std::bit_cast<Handle>(wanted)) {
            return true;
        }
        ++count;
        return false;
    case element_type::STRING:
    case element_type::BOOL:
    case element_type::NULL_VALUE:
        break;
    }
    return false;
}

/// A number that is fit for a line of the log, however long a peer made it.
std::string shortened(std::string_view number) {
    constexpr std::size_t enough = 40;
    return std::string(number.substr(0, enough)) + (number.size() > enough ? "..." : "");
}

} // namespace

std::expected<bool, DecodingError> Decoder::boolean() const {
    bool value = false;
    if (elementOf(value_).get(value)) {
        return std::unexpected(unexpected("Bool", Null::IsMissing));
    }
    return value;
}

std::expected<std::int64_t, DecodingError> Decoder::integer() const {
    const auto number = elementOf(value_);
    std::int64_t value = 0;
    if (!number.get(value)) {
        return value;
    }
    if (!number.is_number()) {
        return std::unexpected(unexpected("Int", Null::IsMissing));
    }
    const auto text = numberText();
    const auto exact = integerOf(text);
    if (!exact) {
        return std::unexpected(
            dataCorrupted("The number " + shortened(text) +
                          (exact.error() == NotAnInteger::IsNotWhole ? " is not a whole number."
                                                                     : " does not fit into a signed 64-bit integer.")));
    }
    return *exact;
}

DecodingError Decoder::typeMismatch(std::string_view expectedType, std::string_view debugDescription) const {
    return error(DecodingError::Kind::TypeMismatch, expectedType, debugDescription);
}

DecodingError Decoder::dataCorrupted(std::string_view debugDescription) const {
    return error(DecodingError::Kind::DataCorrupted, {}, debugDescription);
}

std::optional<DecodingError> Decoder::findMembers(std::span<const std::string_view> names,
                                                  std::span<std::optional<Value>> found, Null null) const {
    simdjson::dom::object object;
    if (elementOf(value_).get(object)) {
        return unexpected("object", null);
    }
    auto missing = names.size();
    for (auto member = object.begin(); missing > 0 && member != object.end(); ++member) {
        const auto name = std::ranges::find_if(names, [&](auto text) { return member.key_equals(text); });
        if (name == names.end()) {
            continue;
        }
        auto& place = found[static_cast<std::size_t>(name - names.begin())];
        if (!place) {
            place = std::bit_cast<Value>(member.value());
            --missing;
        }
    }
    return std::nullopt;
}

DecodingError Decoder::error(DecodingError::Kind kind, std::string_view subject,
                             std::string_view debugDescription) const {
    std::vector<std::string> path;
    for (const auto* place = this; place->parent_; place = place->parent_) {
        path.emplace_back(place->text_);
    }
    std::ranges::reverse(path);
    return {.kind = kind,
            .subject = std::string(subject),
            .codingPath = std::move(path),
            .debugDescription = std::string(debugDescription)};
}

DecodingError Decoder::unexpected(std::string_view expectedType, Null null) const {
    const auto type = elementOf(value_).type();
    const auto kind = type == element_type::NULL_VALUE && null == Null::IsMissing ? DecodingError::Kind::ValueNotFound
                                                                                  : DecodingError::Kind::TypeMismatch;
    return error(kind, expectedType,
                 "Expected " + std::string(expectedType) + " but found " + std::string(typeName(type)) + ".");
}

std::string_view Decoder::numberText() const {
    const auto* root = this;
    while (root->parent_) {
        root = root->parent_;
    }
    std::size_t before = 0;
    countNumbersBefore(elementOf(value_), elementOf(root->value_), before);
    return numberAfter(before, root->text_);
}

DecodingError Decoder::keyNotFound(std::string_view key) const {
    return error(DecodingError::Kind::KeyNotFound, key, "No value for this key.");
}

} // namespace quorvale::platform::json
