#include "platform/json/JSONDecoder.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <ostream>
#include <ranges>
#include <string>
#include <string_view>
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

/// Decodes another text while its own is being decoded.
struct Nesting {
    std::int64_t sum;

    static std::expected<Nesting, DecodingError> decode(const Decoder& decoder) {
        const auto other = JSONDecoder{}.decode<Pair>(R"({"flag":true,"count":1000})");
        return Nesting{Pair::decode(decoder)->count + other->count};
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

/// Neither as it is nor, for an object, after a number that nobody reads and that fits no type.
void expectNotJSON(const std::string& text) {
    for (const auto& whole : {text, text.starts_with('{') ? R"({"z":1e400,)" + text.substr(1) : text}) {
        const auto error = errorOf<Pair>(whole);
        EXPECT_EQ(error.kind, Kind::DataCorrupted) << whole.substr(0, 80);
        EXPECT_THAT(error.codingPath, IsEmpty());
    }
}

} // namespace

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

TEST(JSONDecoderTest, TakesNumbersOfAnySizeWhereNobodyReadsThem) {
    const auto digits = std::string(100, '9');
    for (const auto& number : {std::string("18446744073709551616"), std::string("-9223372036854775809"), "-" + digits,
                               digits + ".5e-7", std::string("1e400"), std::string("-1E+400"), std::string("2e308"),
                               std::string("1e-400"), "1e" + digits, "-0.1e-" + digits, std::string(400, '9') + ".0"}) {
        for (std::string text : {
                 R"({"x":#,"flag":true,"count":7})",
                 R"({"flag":true,"x":[{"y":# , "z":[[],#]}],"count":7})",
                 R"({"flag":true,"count":7,"x":["\\","#\"",#]})",
             }) {
            while (text.contains('#')) {
                text.replace(text.find('#'), 1, number);
            }
            EXPECT_EQ(JSONDecoder{}.decode<Pair>(text), (Pair{.flag = true, .count = 7})) << text;
        }
    }
}

TEST(JSONDecoderTest, TakesTheFirstOfMembersWithTheSameKey) {
    EXPECT_EQ(JSONDecoder{}.decode<Pair>(R"({"flag":true,"flag":1,"count":1,"count":2})"), (Pair{true, 1}));
    EXPECT_EQ(errorOf<Pair>(R"({"flag":1,"flag":true,"count":1})").kind, Kind::TypeMismatch);
}

TEST(JSONDecoderTest, ReportsTheFirstFailureInMemberOrderWithKindAndPath) {
    const std::pair<const char*, const char*> cases[] = {
        {"{}", "key not found (pair) at top level: No value for this key."},
        {R"({"Pair":{}})", "key not found (pair) at top level: No value for this key."},
        {R"({"pair":null})", "value not found (object) at pair: Expected object but found null."},
        {R"({"pair":[]})", "type mismatch (object) at pair: Expected object but found an array."},
        {R"({"pair":{"count":true}})", "key not found (flag) at pair: No value for this key."},
        {R"({"pair":{"flag":null,"count":null}})",
         "value not found (Bool) at pair.flag: Expected Bool but found null."},
        {R"({"pair":{"flag":1}})", "type mismatch (Bool) at pair.flag: Expected Bool but found a number."},
        {R"({"pair":{"flag":"true"}})", "type mismatch (Bool) at pair.flag: Expected Bool but found a string."},
        {R"({"pair":{"flag":{}}})", "type mismatch (Bool) at pair.flag: Expected Bool but found an object."},
        {R"({"pair":{"flag":true,"count":true}})",
         "type mismatch (Int) at pair.count: Expected Int but found a boolean."},
        {R"({"pair":{"flag":true,"count":null}})", "value not found (Int) at pair.count: Expected Int but found null."},
        {R"({"pair":{"flag":true,"count":1.5}})",
         "data corrupted at pair.count: The number 1.5 is not a whole number."},
        {R"({"x":[1e-1,{"1.5":"2"}],"pair":{"flag":true,"x":true,"count":18446744073709551616}})",
         "data corrupted at pair.count: The number 18446744073709551616 does not fit into a signed 64-bit integer."},
        {"null", "type mismatch (object) at top level: Expected object but found null."},
        {"\"pair\"", "type mismatch (object) at top level: Expected object but found a string."},
    };
    for (const auto& [text, description] : cases) {
        EXPECT_EQ(errorOf<Outer>(text).description(), description) << text;
    }
    EXPECT_EQ(errorOf<bool>("null").kind, Kind::ValueNotFound);
    EXPECT_EQ((DecodingError{Kind::DataCorrupted, {}, {"a\nb"}, "\x1b[2J \xE2\x80\xAE \xFF" + std::string(1, '\0')})
                  .description(),
              R"(data corrupted at a\x0ab: \x1b[2J \xe2\x80\xae \xff\x00)")
        << "what could break or hide in a line of the log";
    EXPECT_EQ(errorOf<Outer>(R"({"pair":{"flag":1}})"),
              (DecodingError{.kind = Kind::TypeMismatch,
                             .subject = "Bool",
                             .codingPath = {"pair", "flag"},
                             .debugDescription = "Expected Bool but found a number."}));
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
             "\xEF\xBB\xBF{\"flag\":true,\"count\":1}"s,
             std::string(100'000, '['),
             nested(1024),
         }) {
        expectNotJSON(text);
    }
    EXPECT_TRUE(JSONDecoder{}.decode<Pair>(nested(1023)));
}

TEST(JSONDecoderTest, RefusesFaultsWhereNobodyReads) {
    constexpr std::string_view faults =
        R"(01|-01|1.|.5|+1|-|--1|1e|1e+|1e4.0|0x1|1_0|1 2|NaN|-Inf|tru|nullx|[1,]|[1|1]|{1:1}|{"y"}|"y|'y'|"\x"|"\u1"|)"
        R"("\ud800"|"\udc00"|"\ud800\u0041"|1e400x|01e400|1e400.|+1e400|-.1e400|1e400 1e400|1e400"y"|tru1e400|)"
        "\"\n\"|\"\xC0\x80\"|\"\xED\xA0\x80\"";
    for (const auto fault : std::views::split(faults, '|')) {
        expectNotJSON(R"({"flag":true,"count":1,"x":)" + std::string(std::string_view(fault)) + '}');
        expectNotJSON(R"({"x":[{"y":)" + std::string(std::string_view(fault)) + R"(}],"flag":true,"count":1})");
    }
}

TEST(JSONDecoderTest, DecodesWholeNumbersOfSixtyFourBits) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    const std::pair<const char*, std::int64_t> wholeNumbers[] = {
        {"7", 7},
        {"0", 0},
        {"-0", 0},
        {"-0.0", 0},
        {"0e-99999999999999999999", 0},
        {"7.0", 7},
        {"7e0", 7},
        {"70E-1", 7},
        {"-1.5e1", -15},
        {"9223372036854775807", largest},
        {"-9223372036854775808", smallest},
        {"1E+18", 1'000'000'000'000'000'000},
        {"0.07e2", 7},
        {"9007199254740993.0", 9007199254740993},
        {"-92233720368547758080e-1", smallest},
    };
    for (const auto& [text, value] : wholeNumbers) {
        EXPECT_EQ(JSONDecoder{}.decode<std::int64_t>(text), value) << text;
        const auto beside = R"({"x":1e400,"flag":true,"count":)" + std::string(text) + '}';
        EXPECT_EQ(JSONDecoder{}.decode<Pair>(beside), (Pair{.flag = true, .count = value})) << text;
    }
    for (const auto* text :
         {"7.5", "70e-2", "7.00000000000000000001", "1e-400", "-1e-99999999999999999999", "9223372036854775808",
          "18446744073709551615", "-9223372036854775809", "1e19", "9223372036854775807.5", "18446744073709551616",
          "9223372036854775808e0", "-1e400", "1e99999999999999999999"}) {
        const auto error = errorOf<std::int64_t>(text);
        EXPECT_EQ(error.kind, Kind::DataCorrupted) << text;
        EXPECT_THAT(error.debugDescription, testing::StartsWith("The number " + std::string(text) + ' '));
    }
    EXPECT_EQ(errorOf<std::int64_t>(std::string(100'000, '9')).debugDescription,
              "The number " + std::string(40, '9') + "... does not fit into a signed 64-bit integer.");
}

TEST(JSONDecoderTest, KeepsATextReadableWhileItsRecordDecodesAnother) {
    EXPECT_EQ(JSONDecoder{}.decode<Nesting>(R"({"flag":true,"count":20})")->sum, 1020);
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
