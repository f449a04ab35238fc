#include "platform/json/DecodingError.hpp"

#include <string_view>

namespace quorvale::platform::json {

namespace {

std::string_view name(DecodingError::Kind kind) {
    switch (kind) {
    case DecodingError::Kind::KeyNotFound:
        return "key not found";
    case DecodingError::Kind::ValueNotFound:
        return "value not found";
    case DecodingError::Kind::TypeMismatch:
        return "type mismatch";
    case DecodingError::Kind::DataCorrupted:
        return "data corrupted";
    }
    return "decoding error";
}

void appendPrintable(std::string& line, std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    for (const char character : text) {
        if (character >= ' ' && character <= '~') {
            line += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            line += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
        }
    }
}

} // namespace

std::string DecodingError::description() const {
    std::string line(name(kind));
    if (!subject.empty()) {
        line += " (";
        appendPrintable(line, subject);
        line += ')';
    }
    line += codingPath.empty() ? " at top level" : " at ";
    for (bool first = true; const auto& key : codingPath) {
        line += first ? "" : ".";
        appendPrintable(line, key);
        first = false;
    }
    line += ": ";
    appendPrintable(line, debugDescription);
    return line;
}

} // namespace quorvale::platform::json
