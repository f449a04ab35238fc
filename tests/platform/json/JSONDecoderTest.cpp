#include "platform/json/JSONDecoder.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace quorvale::platform::json {

void PrintTo(const DecodingError& error, std::ostream* stream) {
    *stream << error.description();
}

template <>
struct Coding<std::int64_t> {
    static std::expected<std::int64_t, DecodingError> decode(const Decoder& decoder) { return decoder.integer(); }
};

namespace {

using Kind = DecodingError::Kind;
using Path = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

struct Pair {
    enum class CodingKeys : std::uint8_t { flag, count };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"flag", "count"});
    }

    bool flag;
    std::int64_t count;

    bool operator==(const Pair&) const = default;

    static std::expected<Pair, DecodingError> decode(const Decoder& decoder) {
        return decoder.record<Pair, bool, std::int64_t>();
    }
};

struct Outer {
    enum class CodingKeys : std::uint8_t { pair };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) { return std::to_array<std::string_view>({"pair"}); }

    Pair pair;

    static std::expected<Outer, DecodingError> decode(const Decoder& decoder) { return decoder.record<Outer, Pair>(); }
};

/// The keys that an object holds, and whether each holds an object.
struct Variant {
    enum class CodingKeys : std::uint8_t { one, two };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"one", "two"});
    }

    enum class NoKeys : std::uint8_t {};

    friend constexpr std::array<std::string_view, 0> codingKeyNames(NoKeys /*keys*/) { return {}; }

    std::vector<CodingKeys> keys;

    static std::expected<Variant, DecodingError> decode(const Decoder& decoder) {
        const auto object = decoder.container<CodingKeys>();
        if (!object) {
            return std::unexpected(object.error());
        }
        Variant variant;
        for (const auto key : object->allKeys()) {
            if (const auto nested = object->nestedContainer<NoKeys>(key); !nested) {
                return std::unexpected(nested.error());
            }
            variant.keys.push_back(key);
        }
        return variant;
    }
};

enum class Level : std::uint8_t { Low, High };

/// Decodes another text while its own is being decoded.
struct Nesting {
    enum class CodingKeys : std::uint8_t { before, after };

    friend constexpr auto codingKeyNames(CodingKeys /*keys*/) {
        return std::to_array<std::string_view>({"before", "after"});
    }

    std::int64_t sum;

    static std::expected<Nesting, DecodingError> decode(const Decoder& decoder) {
        const auto object = decoder.container<CodingKeys>();
        const auto other = JSONDecoder{}.decode<Pair>(R"({"flag":true,"count":1000})");
        return Nesting{*object->decode<std::int64_t>(CodingKeys::before) + other->count +
                       *object->decode<std::int64_t>(CodingKeys::after)};
    }
};

template <typename Record>
DecodingError errorOf(std::string_view text) {
    const auto record = JSONDecoder{}.decode<Record>(text);
    EXPECT_FALSE(record) << text;
    return record ? DecodingError{} : record.error();
}

/// A pair with a number inside `depth` objects and arrays.
std::string nested(std::size_t depth) {
    return R"({"flag":true,"count":1,"x":)" + std::string(depth - 1, '[') + '1' + std::string(depth - 1, ']') + '}';
}

} // namespace

template <>
struct Coding<Level> {
    static std::expected<Level, DecodingError> decode(const Decoder& decoder) {
        const auto value = decoder.integer();
        if (!value) {
            return std::unexpected(value.error());
        }
        if (*value != 0 && *value != 1) {
            return std::unexpected(decoder.dataCorrupted("No level " + std::to_string(*value) + "."));
        }
        return static_cast<Level>(*value);
    }
};

TEST(JSONDecoderTest, DecodesRecordsWhateverElseTheirObjectsHold) {
    for (const auto* text : {
             R"({"flag":true,"count":7})",
             " { \"count\" : 7 ,\r\n\t\"flag\" : true } ",
             R"({"x":{"flag":false},"flag":true,"Flag":false,"y":[1,2,{}],"count":7,"z":null})",
             R"({"fl\u0061g":true,"count":7})",
             R"({"flag\u0000":false,"flag":true,"count":7})",
         }) {
        EXPECT_EQ(JSONDecoder{}.decode<Pair>(text), (Pair{.flag = true, .count = 7})) << text;
    }
}

TEST(JSONDecoderTest, TakesTheFirstOfMembersWithTheSameKey) {
    EXPECT_EQ(JSONDecoder{}.decode<Pair>(R"({"flag":true,"flag":1,"count":1,"count":2})"), (Pair{true, 1}));
    EXPECT_EQ(errorOf<Pair>(R"({"flag":1,"flag":true,"count":1})").kind, Kind::TypeMismatch);
}

TEST(JSONDecoderTest, ReportsTheFirstFailureInMemberOrderWithKindAndPath) {
    struct Case {
        const char* text;
        Kind kind;
        const char* subject;
        Path path;
    };

    const Case cases[] = {
        {"{}", Kind::KeyNotFound, "pair", {}},
        {R"({"Pair":{}})", Kind::KeyNotFound, "pair", {}},
        {R"({"pair":null})", Kind::ValueNotFound, "object", {"pair"}},
        {R"({"pair":[]})", Kind::TypeMismatch, "object", {"pair"}},
        {R"({"pair":{}})", Kind::KeyNotFound, "flag", {"pair"}},
        {R"({"pair":{"count":true}})", Kind::KeyNotFound, "flag", {"pair"}},
        {R"({"pair":{"flag":null,"count":null}})", Kind::ValueNotFound, "Bool", {"pair", "flag"}},
        {R"({"pair":{"flag":1}})", Kind::TypeMismatch, "Bool", {"pair", "flag"}},
        {R"({"pair":{"flag":"true"}})", Kind::TypeMismatch, "Bool", {"pair", "flag"}},
        {R"({"pair":{"flag":{}}})", Kind::TypeMismatch, "Bool", {"pair", "flag"}},
        {R"({"pair":{"flag":true,"count":true}})", Kind::TypeMismatch, "Int", {"pair", "count"}},
        {R"({"pair":{"flag":true,"count":null}})", Kind::ValueNotFound, "Int", {"pair", "count"}},
        {R"({"pair":{"flag":true,"count":1.5}})", Kind::DataCorrupted, "", {"pair", "count"}},
        {"null", Kind::TypeMismatch, "object", {}},
        {"[]", Kind::TypeMismatch, "object", {}},
        {"\"pair\"", Kind::TypeMismatch, "object", {}},
    };
    for (const auto& [text, kind, subject, path] : cases) {
        const auto error = errorOf<Outer>(text);
        EXPECT_EQ(error.kind, kind) << text;
        EXPECT_EQ(error.subject, subject) << text;
        EXPECT_EQ(error.codingPath, path) << text;
        EXPECT_FALSE(error.debugDescription.empty()) << text;
    }
    EXPECT_EQ(errorOf<Pair>(R"({"flag":1})").debugDescription, "Expected Bool but found a number.");
}

TEST(JSONDecoderTest, RefusesTextsThatAreNotJSON) {
    using namespace std::string_literals;
    for (const auto& text : {
             ""s,
             " \n"s,
             "true false"s,
             R"({"flag":true,"count":1} x)"s,
             R"({"flag":true,"count":1}{})"s,
             "{\"flag\":true,\"count\":1}\0"s,
             R"({"flag":true,"count":1,})"s,
             R"({"flag":true,"count":1)"s,
             R"({"flag":True,"count":1})"s,
             R"({'flag':true,"count":1})"s,
             R"({"flag":true,"count":01})"s,
             R"({"flag":true,"count":NaN})"s,
             R"({"flag":true,"count":1,"x":"\ud800"})"s,
             "{\"flag\":true,\"count\":1,\"x\":\"\xC0\x80\"}"s,
             "{\"flag\":true,\"count\":1,\"x\":\"a\nb\"}"s,
             "\xEF\xBB\xBF{\"flag\":true,\"count\":1}"s,
             R"({"flag":true,"count":1,"x":1e400})"s,
             R"({"flag":true,"count":1,"x":18446744073709551616})"s,
             std::string(100'000, '['),
             nested(1024),
         }) {
        const auto error = errorOf<Pair>(text);
        EXPECT_EQ(error.kind, Kind::DataCorrupted) << text.substr(0, 80);
        EXPECT_THAT(error.codingPath, IsEmpty());
    }
    EXPECT_TRUE(JSONDecoder{}.decode<Pair>(nested(1023)));
}

TEST(JSONDecoderTest, DecodesWholeNumbersOfSixtyFourBits) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    const std::pair<const char*, std::int64_t> wholeNumbers[] = {
        {"7", 7},
        {"0", 0},
        {"-0", 0},
        {"-0.0", 0},
        {"7.0", 7},
        {"7e0", 7},
        {"70E-1", 7},
        {"-1.5e1", -15},
        {"9223372036854775807", largest},
        {"-9223372036854775808", smallest},
        {"9007199254740991.0", 9007199254740991},
    };
    for (const auto& [text, value] : wholeNumbers) {
        EXPECT_EQ(JSONDecoder{}.decode<std::int64_t>(text), value) << text;
    }
    for (const auto* text : {"7.5", "1e-1", "9223372036854775808", "18446744073709551615", "-9223372036854775809",
                             "1e19", "1e300", "9007199254740993.0", "-9007199254740992.0"}) {
        EXPECT_EQ(errorOf<std::int64_t>(text).kind, Kind::DataCorrupted) << text;
    }
}

TEST(JSONDecoderTest, DecodesSingleValuesAtTopLevelAndAsMembers) {
    EXPECT_EQ(JSONDecoder{}.decode<bool>("false"), false);
    EXPECT_EQ(JSONDecoder{}.decode<Level>("1"), Level::High);
    EXPECT_EQ(errorOf<Level>("2").description(), "data corrupted at top level: No level 2.");
    EXPECT_EQ(errorOf<Level>("\"1\"").kind, Kind::TypeMismatch);
    EXPECT_EQ(errorOf<Level>("true").kind, Kind::TypeMismatch);
    EXPECT_EQ(errorOf<Level>("[1]").kind, Kind::TypeMismatch);
    EXPECT_EQ(errorOf<Level>("null").kind, Kind::ValueNotFound);
    EXPECT_EQ(errorOf<bool>("null").kind, Kind::ValueNotFound);
    EXPECT_EQ(errorOf<bool>("0").kind, Kind::TypeMismatch);
}

TEST(JSONDecoderTest, ListsTheRecognisedKeysOnceAndOpensTheirObjects) {
    using enum Variant::CodingKeys;
    EXPECT_THAT(JSONDecoder{}.decode<Variant>("{}")->keys, IsEmpty());
    EXPECT_THAT(JSONDecoder{}.decode<Variant>(R"({"One":1,"two":{"x":1},"note":2})")->keys, ElementsAre(two));
    EXPECT_THAT(JSONDecoder{}.decode<Variant>(R"({"two":{},"one":{},"two":{}})")->keys, ElementsAre(one, two));
    for (const auto* text : {R"({"two":null})", R"({"two":true})", R"({"two":[]})"}) {
        const auto error = errorOf<Variant>(text);
        EXPECT_EQ(error.kind, Kind::TypeMismatch) << text;
        EXPECT_THAT(error.codingPath, ElementsAre("two")) << text;
    }
}

TEST(JSONDecoderTest, KeepsATextReadableWhileItsRecordDecodesAnother) {
    EXPECT_EQ(JSONDecoder{}.decode<Nesting>(R"({"before":1,"after":20})")->sum, 1021);
}

TEST(JSONDecoderTest, DecodesSmallTextsAfterBrokenAndLargeOnes) {
    const auto large = R"({"flag":true,"x":")" + std::string(3'000'000, 'x') + R"(","count":5})";
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(JSONDecoder{}.decode<Pair>(large), (Pair{true, 5}));
        EXPECT_FALSE(JSONDecoder{}.decode<Pair>(large.substr(0, 1000)));
        EXPECT_EQ(JSONDecoder{}.decode<Pair>(R"({"flag":false,"count":6})"), (Pair{false, 6}));
    }
}

TEST(JSONDecoderTest, DecodesOnSeveralThreadsAtOnce) {
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (std::int64_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (std::int64_t i = 0; i < 1000; ++i) {
                const auto text = R"({"flag":true,"count":)" + std::to_string(thread * 1000 + i) + '}';
                ASSERT_EQ(JSONDecoder{}.decode<Pair>(text), (Pair{true, thread * 1000 + i}));
            }
        });
    }
}

} // namespace quorvale::platform::json
