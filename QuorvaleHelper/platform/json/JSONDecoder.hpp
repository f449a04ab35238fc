#pragma once

#include "platform/json/Decoder.hpp"

#include <expected>
#include <memory>
#include <string_view>

namespace quorvale::platform::json {

/// Turns JSON texts (RFC 8259) into records. Any thread; each thread keeps a parser of its own that costs no
/// allocation from its second text of a size on, and gives back what a text above 64 KiB needed.
///
/// Corrupted data is, besides what breaks the grammar anywhere in the text: a byte order mark, invalid UTF-8, half a
/// surrogate pair, and a value inside 1024 or more objects and arrays. Numbers may have any size and precision where
/// nobody reads them; Decoder says which ones can be read.
class JSONDecoder {
public:
    template <typename Record>
    [[nodiscard]] std::expected<Record, DecodingError> decode(std::string_view text) const {
        Document document;
        const auto root = document.parse(text);
        if (!root) {
            return std::unexpected(root.error());
        }
        return Coding<Record>::decode(*root);
    }

private:
    /// A parsed text. Takes the thread's parser for its life; one made meanwhile gets another one.
    class Document {
    public:
        Document();
        ~Document();
        Document(const Document&) = delete;
        Document& operator=(const Document&) = delete;

        /// The root of `text`, readable while the document lives.
        [[nodiscard]] std::expected<Decoder, DecodingError> parse(std::string_view text);

    private:
        struct Parser;
        std::unique_ptr<Parser> parser_;
    };
};

} // namespace quorvale::platform::json
