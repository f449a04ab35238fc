#pragma once

#include "platform/json/Coding.hpp"
#include "platform/json/CodingKeys.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvale::platform::json {

template <CodingKeySet Key>
class KeyedEncodingContainer;

/// The place of one value in the text being written. A record writes exactly one value to it.
class Encoder {
public:
    /// Writes an object. It ends where the container's life ends.
    template <CodingKeySet Key>
    KeyedEncodingContainer<Key> container() {
        return KeyedEncodingContainer<Key>(text_);
    }

    void boolean(bool value);
    void integer(std::int64_t value);

private:
    friend class JSONEncoder;
    template <CodingKeySet Key>
    friend class KeyedEncodingContainer;

    explicit Encoder(std::string& text) : text_(text) {}

    std::string& text_;
};

/// An object being written, its members in the order of the calls.
template <CodingKeySet Key>
class KeyedEncodingContainer {
public:
    KeyedEncodingContainer(const KeyedEncodingContainer&) = delete;
    KeyedEncodingContainer& operator=(const KeyedEncodingContainer&) = delete;

    ~KeyedEncodingContainer() { text_ += '}'; }

    template <typename Value>
    void encode(const Value& value, Key key) {
        begin(key);
        Encoder member(text_);
        Coding<Value>::encode(value, member);
    }

private:
    friend class Encoder;

    explicit KeyedEncodingContainer(std::string& text) : text_(text) { text_ += '{'; }

    void begin(Key key) {
        // Key names are identifiers of this program: nothing in them needs escaping.
        text_ += first_ ? "\"" : ",\"";
        text_ += stringValue(key);
        text_ += "\":";
        first_ = false;
    }

    std::string& text_;
    bool first_ = true;
};

inline void Coding<bool>::encode(bool value, Encoder& encoder) {
    encoder.boolean(value);
}

} // namespace quorvale::platform::json
