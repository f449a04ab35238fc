#pragma once

#include "platform/json/Coding.hpp"
#include "platform/json/CodingKeys.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <ranges>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

namespace quorvale::platform::json {

template <CodingKeySet Key>
class KeyedDecodingContainer;

/// One value of a parsed text, and the way to it. A view: it must not outlive the decoding call or the
/// container that it came from. Reading allocates nothing; only errors do.
class Decoder {
public:
    /// The value as an object with the members of a key set; other members are ignored, and of members of the
    /// same key the first counts. Any other type is a type mismatch, except that a member's null is a missing value.
    template <CodingKeySet Key>
    [[nodiscard]] std::expected<KeyedDecodingContainer<Key>, DecodingError> container() const;

    /// The value as a record whose members, in declaration order, have the types `Members` and the keys of
    /// `Record::CodingKeys`. All are required; the first one that fails ends the decoding.
    template <typename Record, typename... Members>
    [[nodiscard]] std::expected<Record, DecodingError> record() const;

    /// The value as `true` or `false`.
    [[nodiscard]] std::expected<bool, DecodingError> boolean() const;

    /// The value as a signed 64-bit integer. A number with a fraction part or an exponent is taken when it is whole
    /// (7.0, 70e-1), as exactly as it is written. Any other number, of whatever size, is corrupted data, and the error
    /// names it.
    [[nodiscard]] std::expected<std::int64_t, DecodingError> integer() const;

    /// Errors of the records' own, at this value's place.
    [[nodiscard]] DecodingError typeMismatch(std::string_view expectedType, std::string_view debugDescription) const;
    [[nodiscard]] DecodingError dataCorrupted(std::string_view debugDescription) const;

private:
    friend class JSONDecoder;
    template <CodingKeySet Key>
    friend class KeyedDecodingContainer;

    /// The parser's own handle of a value, kept as plain bytes so that its type stays out of this header.
    struct Value {
        alignas(void*) std::array<std::byte, 2 * sizeof(void*)> bytes;
    };

    /// What null means where an object is expected.
    enum class Null : std::uint8_t { IsMissing, IsMismatch };

    /// The root of `text`.
    Decoder(Value value, std::string_view text) : value_(value), text_(text) {}

    Decoder(Value value, std::string_view key, const Decoder& parent) : value_(value), text_(key), parent_(&parent) {}

    /// Puts the first member of each name into its place of `found`.
    [[nodiscard]] std::optional<DecodingError> findMembers(std::span<const std::string_view> names,
                                                           std::span<std::optional<Value>> found, Null null) const;
    [[nodiscard]] DecodingError error(DecodingError::Kind kind, std::string_view subject,
                                      std::string_view debugDescription) const;
    [[nodiscard]] DecodingError unexpected(std::string_view expectedType, Null null) const;
    [[nodiscard]] DecodingError keyNotFound(std::string_view key) const;
    [[nodiscard]] std::string_view numberText() const;

    Value value_;
    std::string_view text_; ///< the key of a member, the whole text of the root
    const Decoder* parent_ = nullptr;
};

/// The members of an object that belong to one key set.
template <CodingKeySet Key>
class KeyedDecodingContainer {
public:
    /// The keys that the object holds, each once, in the order of the key set.
    [[nodiscard]] auto allKeys() const {
        return std::views::iota(std::size_t{0}, members_.size()) |
               std::views::filter([this](std::size_t index) { return members_[index].has_value(); }) |
               std::views::transform([](std::size_t index) { return static_cast<Key>(index); });
    }

    /// The required value of a member.
    template <typename Member>
    [[nodiscard]] std::expected<Member, DecodingError> decode(Key key) const {
        const auto& member = members_[static_cast<std::size_t>(key)];
        if (!member) {
            return std::unexpected(object_.keyNotFound(stringValue(key)));
        }
        return Coding<Member>::decode(Decoder(*member, stringValue(key), object_));
    }

    /// The required object under a key, with the members of another key set. Anything else there, null
    /// included, is a type mismatch. Must not outlive this container.
    template <CodingKeySet Nested>
    [[nodiscard]] std::expected<KeyedDecodingContainer<Nested>, DecodingError> nestedContainer(Key key) const& {
        const auto& member = members_[static_cast<std::size_t>(key)];
        if (!member) {
            return std::unexpected(object_.keyNotFound(stringValue(key)));
        }
        return KeyedDecodingContainer<Nested>::of(Decoder(*member, stringValue(key), object_),
                                                  Decoder::Null::IsMismatch);
    }

private:
    friend class Decoder;
    template <CodingKeySet Other>
    friend class KeyedDecodingContainer;

    explicit KeyedDecodingContainer(const Decoder& object) : object_(object) {}

    static std::expected<KeyedDecodingContainer, DecodingError> of(const Decoder& object, Decoder::Null null) {
        KeyedDecodingContainer container(object);
        if (auto error = object.findMembers(codingKeyTexts<Key>, container.members_, null)) {
            return std::unexpected(std::move(*error));
        }
        return container;
    }

    Decoder object_;
    std::array<std::optional<Decoder::Value>, codingKeyTexts<Key>.size()> members_;
};

template <CodingKeySet Key>
std::expected<KeyedDecodingContainer<Key>, DecodingError> Decoder::container() const {
    return KeyedDecodingContainer<Key>::of(*this, parent_ ? Null::IsMissing : Null::IsMismatch);
}

template <typename Record, typename... Members>
std::expected<Record, DecodingError> Decoder::record() const {
    using Key = Record::CodingKeys;
    static_assert(sizeof...(Members) == codingKeyTexts<Key>.size());
    const auto object = container<Key>();
    if (!object) {
        return std::unexpected(object.error());
    }
    std::optional<DecodingError> error;
    const auto read = [&]<typename Member>(std::optional<Member>& member, Key key) {
        auto value = object->template decode<Member>(key);
        if (!value) {
            error = std::move(value.error());
            return false;
        }
        member.emplace(std::move(*value));
        return true;
    };
    std::tuple<std::optional<Members>...> members;
    return [&]<std::size_t... Index>(std::index_sequence<Index...>) -> std::expected<Record, DecodingError> {
        if ((read(std::get<Index>(members), static_cast<Key>(Index)) && ...)) {
            return Record{*std::move(std::get<Index>(members))...};
        }
        return std::unexpected(std::move(*error));
    }(std::index_sequence_for<Members...>{});
}

inline std::expected<bool, DecodingError> Coding<bool>::decode(const Decoder& decoder) {
    return decoder.boolean();
}

} // namespace quorvale::platform::json
