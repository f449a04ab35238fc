#include "platform/json/Decoder.hpp"

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <cmath>
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
    switch (number.type()) {
    case element_type::INT64:
        return number.get_int64().value_unsafe();
    case element_type::UINT64:
        return std::unexpected(dataCorrupted("The number does not fit into a signed 64-bit integer."));
    case element_type::DOUBLE: {
        constexpr double limit = 0x1p53;
        const double value = number.get_double().value_unsafe();
        if (std::trunc(value) != value || std::abs(value) >= limit) {
            return std::unexpected(dataCorrupted("The number is not a whole number that is held exactly."));
        }
        return static_cast<std::int64_t>(value);
    }
    default:
        return std::unexpected(unexpected("Int", Null::IsMissing));
    }
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
        path.emplace_back(place->key_);
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

DecodingError Decoder::keyNotFound(std::string_view key) const {
    return error(DecodingError::Kind::KeyNotFound, key, "No value for this key.");
}

} // namespace quorvale::platform::json
