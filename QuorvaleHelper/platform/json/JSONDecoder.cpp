#include "platform/json/JSONDecoder.hpp"

#include "platform/json/NumberText.hpp"

#include <simdjson.h>

#include <bit>
#include <cstddef>
#include <string>
#include <utility>

namespace quorvale::platform::json {

namespace {

// A parser needs about fifteen times the size of its largest text.
constexpr std::size_t largestKeptText = 64UL * 1024;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

static_assert(simdjson::DEFAULT_MAX_DEPTH == 1024);

// A number that is no integer to the parser, so that whoever reads it goes back to the text.
constexpr std::string_view inItsPlace = "0.5";

constexpr std::size_t shortestOutOfRange = std::string_view("1e309").size();

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
            piece = inItsPlace;
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
    return Decoder(std::bit_cast<Decoder::Value>(root), text);
}

} // namespace quorvale::platform::json
