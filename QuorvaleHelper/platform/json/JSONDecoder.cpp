#include "platform/json/JSONDecoder.hpp"

#include <simdjson.h>

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

} // namespace

struct JSONDecoder::Document::Parser {
    /// The thread's parser while no document has it.
    static std::unique_ptr<Parser>& spare() {
        thread_local std::unique_ptr<Parser> parser;
        return parser;
    }

    simdjson::dom::parser parser;
};

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
    if (const auto error = parser_->parser.parse(text.data(), text.size()).get(root)) {
        return corrupted(simdjson::error_message(error));
    }
    return Decoder(std::bit_cast<Decoder::Value>(root));
}

} // namespace quorvale::platform::json
