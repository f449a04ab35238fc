#include "ui/logs/TextSearch.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvale::ui::logs {

namespace {

using Case = TextSearch::Case;

/// Where `wanted` is found, one after the other.
std::vector<std::string> found(std::string_view text, std::string_view wanted, Case letters) {
    const TextSearch search(wanted, letters);
    std::vector<std::string> matches;
    for (auto match = search.next(text, 0); match; match = search.next(text, match->end)) {
        matches.emplace_back(text.substr(match->begin, match->end - match->begin));
    }
    EXPECT_EQ(search.count(text), matches.size());
    return matches;
}

using Found = std::vector<std::string>;

} // namespace

TEST(TextSearchTest, FindsTheBytesOrTheLettersOfEitherCase) {
    EXPECT_EQ(found("Agent agent AGENT", "agent", Case::Matched), (Found{"agent"}));
    EXPECT_EQ(found("Agent agent AGENT", "agENT", Case::Ignored), (Found{"Agent", "agent", "AGENT"}));
    EXPECT_EQ(found("aaaaa", "aa", Case::Matched), (Found{"aa", "aa"})) << "none over another";
    EXPECT_EQ(found("aAaAa", "aa", Case::Ignored), (Found{"aA", "aA"}));
    EXPECT_EQ(found("\u00C4rger \u00E4rger", "\u00E4R", Case::Ignored), (Found{"\u00C4r", "\u00E4r"}));
    EXPECT_EQ(found("K \u212A k", "k", Case::Ignored), (Found{"K", "\u212A", "k"})) << "of several bytes";
    EXPECT_EQ(found("\u03A3\u03C3\u03C2", "\u03C3", Case::Ignored), (Found{"\u03A3", "\u03C3", "\u03C2"}));
    EXPECT_EQ(found("two\nlines", "O\nl", Case::Ignored), (Found{"o\nl"}));
    EXPECT_EQ(found("\xFF \xC3", "\xC3", Case::Matched), (Found{"\xC3"}));
    EXPECT_EQ(found("\xFF \xC3", "\xFF", Case::Ignored), (Found{"\xFF", "\xC3"})) << "what is no text looks the same";
    for (const auto letters : {Case::Matched, Case::Ignored}) {
        EXPECT_EQ(found("text", "", letters), Found());
        EXPECT_EQ(found("", "text", letters), Found());
        EXPECT_EQ(found("tex", "text", letters), Found());
        EXPECT_EQ(found("\xE2\x82", "\u20AC", letters), Found());
    }
}

TEST(TextSearchTest, FindsTheOneBeforeAPlaceHoweverFarBackItIs) {
    const auto text = "Needle " + std::string(200'000, 'n') + " needle needle";
    for (const auto letters : {Case::Matched, Case::Ignored}) {
        const TextSearch search("needle", letters);
        const auto last = search.previous(text, text.size()).value_or(TextSearch::Match{});
        EXPECT_EQ(last.end, text.size());
        const auto before = search.previous(text, last.begin).value_or(TextSearch::Match{});
        EXPECT_EQ(before.end + 1, last.begin);
        EXPECT_EQ(search.previous(text, before.begin).has_value(), letters == Case::Ignored);
        EXPECT_FALSE(search.previous(text, 0));
        EXPECT_FALSE(search.next(text, last.end));
    }
}

} // namespace quorvale::ui::logs
