#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvale::platform::json {

/// Why a text did not become a record.
struct DecodingError {
    enum class Kind : std::uint8_t {
        KeyNotFound,   ///< an object lacks a required member
        ValueNotFound, ///< a required value is null
        TypeMismatch,  ///< a value has another JSON type than the expected one
        DataCorrupted, ///< the text is not JSON, or a value of the right type is not one of the allowed values
    };

    Kind kind;
    /// The missing key, or the name of the expected type; empty when data is corrupted.
    std::string subject;
    /// The keys from the root of the document to the place of the failure. A missing key is not part of it.
    std::vector<std::string> codingPath;
    std::string debugDescription;

    /// Kind, coding path and debug description as one line of printable ASCII, whatever the members hold, so
    /// that a peer's text in them can neither break a log line nor hide in it.
    [[nodiscard]] std::string description() const;

    bool operator==(const DecodingError&) const = default;
};

} // namespace quorvale::platform::json
