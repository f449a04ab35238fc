#include "platform/json/Encoder.hpp"

namespace quorvale::platform::json {

void Encoder::boolean(bool value) {
    text_ += value ? "true" : "false";
}

void Encoder::integer(std::int64_t value) {
    text_ += std::to_string(value);
}

} // namespace quorvale::platform::json
