#include "app/AppState.hpp"
#include "model/DigestHelpers.hpp"
#include "model/Restrictions.hpp"
#include "model/RuleSource.hpp"
#include "model/ThreatType.hpp"
#include "platform/json/JSONDecoder.hpp"
#include "status/AgentState.hpp"
#include "support/Comparison.hpp"

#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <simdjson.h>
#include <utf8proc.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorvale::bench {

namespace {

constexpr std::size_t mebibyte = 1024UL * 1024;

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

template <typename Record>
Comparison decoding(const std::string& name, const std::string& text) {
    const auto parser = std::make_shared<simdjson::dom::parser>();
    return {.what = "decode " + name,
            .bytes = text.size(),
            .ours =
                [text] {
                    const auto record = platform::json::JSONDecoder{}.decode<Record>(text);
                    require(record.has_value());
                    benchmark::DoNotOptimize(&record);
                },
            .baselineName = "simdjson parse of the same text",
            .baseline =
                [text, parser] {
                    const auto error = parser->parse(text.data(), text.size()).error();
                    require(!error);
                },
            .timeLimit = 3.0,
            .allocations = Comparison::Allocations::AsTheBaseline};
}

/// Against EVP at its fastest: the algorithm fetched and the context made beforehand, no text of the digest.
Comparison digesting(const std::string& name, const char* algorithm, std::string (*digest)(std::string_view),
                     std::size_t bytes) {
    const auto fetched = std::shared_ptr<EVP_MD>(EVP_MD_fetch(nullptr, algorithm, nullptr), EVP_MD_free);
    const auto context = std::shared_ptr<EVP_MD_CTX>(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    const std::string text(bytes, 'x');
    constexpr std::size_t longText = 8192;
    return {.what = name + " of " + std::to_string(bytes) + " bytes",
            .bytes = bytes,
            .ours = [text, digest] { benchmark::DoNotOptimize(digest(text)); },
            .baselineName = "EVP, prefetched, one context",
            .baseline =
                [text, fetched, context] {
                    std::array<unsigned char, EVP_MAX_MD_SIZE> result;
                    require(EVP_DigestInit_ex2(context.get(), fetched.get(), nullptr) == 1 &&
                            EVP_DigestUpdate(context.get(), text.data(), text.size()) == 1 &&
                            EVP_DigestFinal_ex(context.get(), result.data(), nullptr) == 1);
                    benchmark::DoNotOptimize(result);
                },
            .timeLimit = bytes >= longText ? 1 / 0.95 : 1.3};
}

struct Found {
    std::size_t offset;     ///< of the character, or the end of the text
    std::int64_t character; ///< its position, or that of the last one
};

Found findByBareLoop(std::int64_t position, std::string_view text) {
    const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto size = static_cast<utf8proc_ssize_t>(text.size());
    utf8proc_int32_t previous = 0;
    utf8proc_int32_t state = 0;
    std::int64_t character = -1;
    for (utf8proc_ssize_t offset = 0; offset < size;) {
        utf8proc_int32_t scalar = 0;
        const auto length = utf8proc_iterate(bytes + offset, size - offset, &scalar);
        if ((offset == 0 || utf8proc_grapheme_break_stateful(previous, scalar, &state)) && ++character == position) {
            return {.offset = static_cast<std::size_t>(offset), .character = character};
        }
        previous = scalar;
        offset += length;
    }
    return {.offset = text.size(), .character = character};
}

struct Demands {
    std::optional<double> timeLimit = std::nullopt;
    std::optional<double> throughputGoal = std::nullopt;
};

/// The last character of a mebibyte of `piece`s.
Comparison finding(const std::string& name, std::string_view piece, Demands demands) {
    std::string text;
    while (text.size() + piece.size() <= mebibyte) {
        text += piece;
    }
    const auto last = findByBareLoop(-1, text).character;
    require(model::characterAt(last, text) == text.substr(findByBareLoop(last, text).offset));
    return {.what = "characterAt, 1 MiB of " + name,
            .bytes = text.size(),
            .ours = [text, last] { benchmark::DoNotOptimize(model::characterAt(last, text)); },
            .baselineName = "bare utf8proc loop",
            .baseline = [text, last] { benchmark::DoNotOptimize(findByBareLoop(last, text)); },
            .timeLimit = demands.timeLimit,
            .throughputGoal = demands.throughputGoal};
}

std::vector<Comparison> comparisons() {
    std::vector<Comparison> all{
        decoding<status::AgentState>("AgentState", R"({"active":true})"),
        decoding<app::AppState>("AppState", R"({"running":true,"restart":false,"terminate":false})"),
        decoding<model::Restrictions>("Restrictions",
                                      R"({"training":true,"geographyLock":false,"allowLock":true,"denyLock":false})"),
        decoding<model::RuleSource>("RuleSource", R"({"managedSetting":{}})"),
        decoding<model::ThreatType>("ThreatType", "27"),
    };
    for (const std::size_t bytes : {16UL, 64UL, 1024UL, 8192UL, 64 * 1024UL, mebibyte}) {
        all.push_back(digesting("md5Hex", "MD5", model::md5Hex, bytes));
        all.push_back(digesting("sha256Hex", "SHA256", model::sha256Hex, bytes));
    }
    constexpr Demands ofASCII{.timeLimit = 1.0, .throughputGoal = 2.0};
    constexpr Demands ofText{.timeLimit = 1.0};
    // Nothing but flags, or letters in parts, is no text that anyone writes: our pass can't be faster there.
    constexpr Demands none;
    all.push_back(finding("ASCII", "The quick brown fox jumps over the lazy dog. ", ofASCII));
    all.push_back(finding("ASCII, CR LF", "The quick brown fox jumps\r\nover the lazy dog.\r\n", ofASCII));
    all.push_back(finding("mixed text",
                          "Blocked \u2013 Gr\u00F6\u00DFe, \u041C\u043E\u0441\u043A\u0432\u0430, \u6771\u4EAC, "
                          "e\u0301t\u00E9, \U0001F468\u200D\U0001F469\u200D\U0001F467!\n",
                          ofText));
    all.push_back(finding(
        "Greek", "\u0397 \u03B3\u03C1\u03AE\u03B3\u03BF\u03C1\u03B7 \u03B1\u03BB\u03B5\u03C0\u03BF\u03CD ", ofText));
    all.push_back(finding("Chinese", "\u6771\u4EAC\u7DB2\u8DEF\u4FDD\u8B77\u5DF2\u555F\u7528\u3002", ofText));
    all.push_back(finding("Korean, in parts", "\u1112\u1161\u11AB\u1100\u1173\u11AF", none));
    all.push_back(finding("flags", "\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", none));
    return all;
}

} // namespace

} // namespace quorvale::bench

int main(int argc, char** argv) {
    return quorvale::bench::run(argc, argv, quorvale::bench::comparisons());
}
