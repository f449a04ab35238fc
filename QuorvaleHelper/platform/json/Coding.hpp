#pragma once

#include "platform/json/DecodingError.hpp"

#include <expected>

namespace quorvale::platform::json {

class Decoder;
class Encoder;

/// How a type is read and written. A record has the two members named here (or the one that it needs); an
/// enumeration, which can't have members, specialises this template.
template <typename Value>
struct Coding {
    static std::expected<Value, DecodingError> decode(const Decoder& decoder) { return Value::decode(decoder); }

    static void encode(const Value& value, Encoder& encoder) { value.encode(encoder); }
};

/// A JSON `true` or `false`, never a number.
template <>
struct Coding<bool> {
    static std::expected<bool, DecodingError> decode(const Decoder& decoder);
    static void encode(bool value, Encoder& encoder);
};

} // namespace quorvale::platform::json
