#include "platform/text/Characters.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quorvale::platform::text {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

std::vector<std::string> charactersOf(std::string_view text) {
    std::vector<std::string> characters;
    while (auto character = characterAt(characters.size(), text)) {
        characters.push_back(*std::move(character));
    }
    return characters;
}

const auto replacement = "\uFFFD"s;

} // namespace

TEST(CharactersTest, ForgetsWhatStoodBeforeAPlainCharacter) {
    EXPECT_THAT(charactersOf("\U0001F1E9a\U0001F1EA\U0001F1EBb"),
                ElementsAre("\U0001F1E9", "a", "\U0001F1EA\U0001F1EB", "b"));
    EXPECT_THAT(charactersOf("\U0001F469\u200D\U0001F4BB!\U0001F469a\u200D\U0001F4BB"),
                ElementsAre("\U0001F469\u200D\U0001F4BB", "!", "\U0001F469", "a\u200D", "\U0001F4BB"));
    EXPECT_THAT(charactersOf("a\0b"s), ElementsAre("a", "\0"s, "b"));
}

TEST(CharactersTest, FindsTheSameCharactersBehindLongRunsOfASCII) {
    const std::vector<std::string> ends[] = {
        {"\r\n", "e\u0301", "x"}, {"e\u0301"}, {"\r", "\u0301"}, {"\u0600x", "y"}, {"\u00E9", "\r\n", "\r"}, {"\xFF"},
    };
    for (const auto& end : ends) {
        for (std::size_t length = 0; length < 300; ++length) {
            std::vector<std::string> expected;
            std::string text;
            for (std::size_t index = 0; index < length; ++index) {
                expected.emplace_back(index % 7 == 3 ? "\r\n" : "a");
                text += expected.back();
            }
            for (const auto& character : end) {
                text += character;
                expected.push_back(character == "\xFF" ? replacement : character);
            }
            for (auto position = length > 0 ? length - 1 : 0; position < expected.size(); ++position) {
                ASSERT_EQ(characterAt(position, text), expected[position]) << length << ' ' << position;
            }
            ASSERT_EQ(characterAt(expected.size(), text), std::nullopt) << length;
        }
    }
    const auto text = std::string(200, 'a') + "\u0301" + std::string(200, 'b') + "\r\n" + std::string(63, 'c');
    EXPECT_THAT((std::vector{characterAt(199, text), characterAt(200, text), characterAt(400, text),
                             characterAt(401, text), characterAt(463, text), characterAt(464, text)}),
                ElementsAre("a\u0301", "b", "\r\n", "c", "c", std::nullopt));
}

TEST(CharactersTest, CountsEachMaximalIllFormedSubpartAsOneReplacement) {
    struct Case {
        std::string text;
        std::size_t replacements;
    };

    // The examples of the Unicode Standard's tables 3-8 to 3-11 among them, without their last letter.
    const Case cases[] = {
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82", 8},
        {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF", 8},
        {"\xF4\x91\x92\x93\xFF", 5},
        {"\x80\xBF", 2},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF", 4},
        {"\xF0\x9F\x98", 1},
        {"\xF5\x80\x80\x80", 4},
        {"\xC2", 1},
        {"\xF4\x8F\xBF", 1},
    };
    for (const auto& [text, replacements] : cases) {
        std::vector<std::string> expected(replacements, replacement);
        EXPECT_THAT(charactersOf(text), ElementsAreArray(expected)) << testing::PrintToString(text);
        expected.emplace_back("A");
        EXPECT_THAT(charactersOf(text + "A"), ElementsAreArray(expected)) << testing::PrintToString(text);
    }
    EXPECT_THAT(charactersOf("a\xE2\x82\u0301\uFFFD"), ElementsAre("a", replacement + "\u0301", replacement));
    EXPECT_THAT(charactersOf("\U0010FFFF\uD7FF\uE000"), ElementsAre("\U0010FFFF", "\uD7FF", "\uE000"));
}

} // namespace quorvale::platform::text
