#include "model/DigestHelpers.hpp"

#include <QString>
#include <gtest/gtest.h>

#include <fstream>
#include <iostream>
#include <limits>
#include <sstream>
#include <vector>

namespace quorvale::model {

TEST(DigestHelpersTest, GiveThePublishedDigestsOfTheBytesAsTheyStand) {
    // RFC 1321, appendix A.5, and FIPS 180-2, appendix B.
    EXPECT_EQ(md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5Hex("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(md5Hex("\xC3\xA9"), "66ddcd97cfdeabb2f6fb8a999b4bc76f");
    EXPECT_EQ(sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256Hex(std::string(1'000'000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    EXPECT_NE(sha256Hex(std::string("a\0b", 3)), sha256Hex("a"));
}

TEST(DigestHelpersTest, FindEveryCharacterOfUnicodesBreakTest) {
    std::size_t count = 0;
    std::size_t passed = 0;
    std::ifstream stream("/usr/share/unicode/auxiliary/GraphemeBreakTest.txt");
    EXPECT_TRUE(stream) << "is unicode-data installed?";
    for (std::string line; std::getline(stream, line);) {
        // A mark and a scalar value in turns, the last mark at the end of the text.
        std::istringstream words(line.substr(0, line.find('#')));
        std::vector<std::string> characters;
        std::string text;
        for (std::string mark, scalar; words >> mark >> scalar;) {
            if (mark == "÷") {
                characters.emplace_back();
            }
            const auto value = static_cast<char32_t>(std::stoul(scalar, nullptr, 16));
            const auto bytes = QString::fromUcs4(&value, 1).toStdString();
            characters.back() += bytes;
            text += bytes;
        }
        bool right = !characterAt(std::ssize(characters), text);
        for (std::int64_t position = 0; const auto& character : characters) {
            right = right && characterAt(position++, text) == character;
        }
        EXPECT_TRUE(right) << line;
        count += characters.empty() ? 0 : 1;
        passed += !characters.empty() && right ? 1 : 0;
    }
    EXPECT_GE(count, 602U);
    std::cout << "GraphemeBreakTest.txt: " << passed << '/' << count << '\n';
}

TEST(DigestHelpersTest, FindNoCharacterOutsideTheText) {
    using Limits = std::numeric_limits<std::int64_t>;
    EXPECT_EQ(characterAt(0, ""), std::nullopt);
    EXPECT_EQ(characterAt(1, "e\u0301x"), "x");
    EXPECT_EQ(characterAt(2, "e\u0301x"), std::nullopt);
    // Nothing behind the view is read.
    const auto text = std::string_view("abcd").substr(0, 3);
    EXPECT_EQ(characterAt(2, text), "c");
    for (const auto position : {std::int64_t{3}, std::int64_t{-1}, Limits::max(), Limits::min()}) {
        EXPECT_EQ(characterAt(position, text), std::nullopt) << position;
    }
}

} // namespace quorvale::model
