#include "platform/json/JSONDecoder.hpp"

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

namespace quorvale::platform::json {

namespace {

// A parser needs about fifteen times the size of its largest text.
constexpr std::size_t largestKeptText = 64UL * 1024;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

static_assert(simdjson::DEFAULT_MAX_DEPTH == 1024);

// Numbers that the parser converts and that are corrupted data for whoever reads them, as integer and as double.
constexpr std::string_view integerBeyondRecords = "9223372036854775808";
constexpr std::string_view doubleBeyondRecords = "1e308";

constexpr std::size_t shortestOutOfRange = std::string_view("1e309").size();

/// Whether the whole text is a number (RFC 8259, section 6).
bool isNumber(std::string_view text) {
    const auto skipOneOf = [&text](std::string_view characters) {
        const bool found = !text.empty() && characters.contains(text.front());
        text.remove_prefix(found ? 1 : 0);
        return found;
    };
    const auto skipDigits = [&text] {
        const auto count = std::min(text.find_first_not_of("0123456789"), text.size());
        text.remove_prefix(count);
        return count > 0;
    };
    skipOneOf("-");
    if (!skipOneOf("0") && !skipDigits()) {
        return false;
    }
    if (skipOneOf(".") && !skipDigits()) {
        return false;
    }
    if (skipOneOf("eE")) {
        skipOneOf("+-");
        if (!skipDigits()) {
            return false;
        }
    }
    return text.empty();
}

bool isOfNumbers(char c) {
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

/// The string that a text begins with, up to the end of the text when nothing ends it.
std::string_view firstString(std::string_view text) {
    auto quote = text.find('"', 1);
    // A quote after an odd number of backslashes is escaped.
    while (quote != std::string_view::npos && (quote - text.find_last_not_of('\\', quote - 1)) % 2 == 0) {
        quote = text.find('"', quote + 1);
    }
    return quote == std::string_view::npos ? text : text.substr(0, quote + 1);
}

/// What a text begins with: a string, a run of the characters of numbers, or all up to the next of these.
std::string_view firstPiece(std::string_view text) {
    if (text.front() == '"') {
        return firstString(text);
    }
    const auto* const end = isOfNumbers(text.front())
                                ? std::ranges::find_if_not(text, isOfNumbers)
                                : std::ranges::find_if(text, [](char c) { return c == '"' || isOfNumbers(c); });
    return {text.begin(), end};
}

} // namespace

struct JSONDecoder::Document::Parser {
    /// The thread's parser while no document has it.
    static std::unique_ptr<Parser>& spare() {
        thread_local std::unique_ptr<Parser> parser;
        return parser;
    }

    /// Makes `inRange` of a text, with other numbers in the place of those that are valid but not converted by the
    /// parser. False when there is none. Changes nothing else, so that any fault in the text is one in `inRange`.
    bool bringNumbersIntoRange(std::string_view text);

    simdjson::dom::parser parser;
    std::string inRange;
};

bool JSONDecoder::Document::Parser::bringNumbersIntoRange(std::string_view text) {
    inRange.clear();
    inRange.reserve(text.size() + simdjson::SIMDJSON_PADDING);
    bool found = false;
    while (!text.empty()) {
        auto piece = firstPiece(text);
        text.remove_prefix(piece.size());
        if (piece.size() >= shortestOutOfRange && isNumber(piece) && parser.parse(piece.data(), piece.size()).error()) {
            piece = piece.find_first_of(".eE") == std::string_view::npos ? integerBeyondRecords : doubleBeyondRecords;
            found = true;
        }
        inRange += piece;
    }
    return found;
}

JSONDecoder::Document::Document() : parser_(std::move(Parser::spare())) {
    if (!parser_) {
        parser_ = std::make_unique<Parser>();
    }
}

JSONDecoder::Document::~Document() {
    if (parser_->parser.capacity() <= largestKeptText) {
        Parser::spare() = std::move(parser_);
    }
}

std::expected<Decoder, DecodingError> JSONDecoder::Document::parse(std::string_view text) {
    const auto corrupted = [](std::string_view why) {
        return std::unexpected(DecodingError{.kind = DecodingError::Kind::DataCorrupted,
                                             .subject = {},
                                             .codingPath = {},
                                             .debugDescription = "The text is not JSON: " + std::string(why)});
    };
    // Newer parsers skip the mark, older ones refuse it.
    if (text.starts_with(byteOrderMark)) {
        return corrupted("it begins with a byte order mark.");
    }
    simdjson::dom::element root;
    auto error = parser_->parser.parse(text.data(), text.size()).get(root);
    // The parser converts every number, also one that nobody reads, and refuses the text for one beyond its types.
    if (error && parser_->bringNumbersIntoRange(text)) {
        error = parser_->parser.parse(parser_->inRange).get(root);
    }
    if (error) {
        return corrupted(simdjson::error_message(error));
    }
    return Decoder(std::bit_cast<Decoder::Value>(root));
}

} // namespace quorvale::platform::json
