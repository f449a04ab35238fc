#pragma once

#include "platform/json/Encoder.hpp"

#include <string>

namespace quorvale::platform::json {

/// Turns records into JSON texts without blanks. Any thread.
class JSONEncoder {
public:
    template <typename Value>
    [[nodiscard]] std::string encode(const Value& value) const {
        std::string text;
        Encoder encoder(text);
        Coding<Value>::encode(value, encoder);
        return text;
    }
};

} // namespace quorvale::platform::json
