#include "model/DigestHelpers.hpp"

#include "support/UnicodeTestFile.hpp"
#include "support/VectorFile.hpp"

#include <gtest/gtest.h>

#include <array>
#include <iostream>

namespace quorvale::model {

namespace {

std::string bytesOf(std::string_view hexadecimal) {
    std::string bytes;
    for (; hexadecimal.size() >= 2; hexadecimal.remove_prefix(2)) {
        bytes += static_cast<char>(std::stoi(std::string(hexadecimal.substr(0, 2)), nullptr, 16));
    }
    return bytes;
}

/// Checks the digests of all messages of a file and says how many there were.
void checkMessages(const std::string& file, std::string (*digest)(std::string_view), std::size_t expectedCount) {
    std::size_t count = 0;
    std::size_t length = 0;
    std::string message;
    for (const auto& [name, value] : tests::vectorsIn(file)) {
        if (name == "Len") {
            length = std::stoul(value) / 8;
        } else if (name == "Msg") {
            message = bytesOf(value).substr(0, length);
        } else if (name == "MD") {
            ASSERT_EQ(message.size(), length);
            EXPECT_EQ(digest(message), value) << file << ": " << length << " bytes";
            ++count;
        }
    }
    EXPECT_EQ(count, expectedCount);
    std::cout << file << ": " << count << " vectors\n";
}

} // namespace

TEST(DigestHelpersTest, GiveTheDigestsOfThePublishedVectors) {
    checkMessages("MD5/rfc-1321.txt", md5Hex, 7);
    checkMessages("SHA2/SHA256ShortMsg.rsp", sha256Hex, 65);
    checkMessages("SHA2/SHA256LongMsg.rsp", sha256Hex, 64);
}

TEST(DigestHelpersTest, GiveTheDigestsOfTheMonteCarloVectors) {
    std::size_t count = 0;
    std::string seed;
    for (const auto& [name, value] : tests::vectorsIn("SHA2/SHA256Monte.rsp")) {
        if (name == "Seed") {
            seed = bytesOf(value);
        } else if (name == "MD") {
            std::array last{seed, seed, seed};
            for (int round = 0; round < 1000; ++round) {
                last = {last[1], last[2], bytesOf(sha256Hex(last[0] + last[1] + last[2]))};
            }
            seed = last[2];
            ASSERT_EQ(seed, bytesOf(value)) << "vector " << count;
            ++count;
        }
    }
    EXPECT_EQ(count, 100U);
    std::cout << "SHA2/SHA256Monte.rsp: " << count << " vectors\n";
}

TEST(DigestHelpersTest, HashTheBytesAsTheyStand) {
    using namespace std::string_view_literals;
    EXPECT_EQ(md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5Hex("\xC3\xA9"), "66ddcd97cfdeabb2f6fb8a999b4bc76f");
    EXPECT_NE(md5Hex("e\xCC\x81"), md5Hex("\xC3\xA9"));
    EXPECT_NE(sha256Hex("a\0b"sv), sha256Hex("a"sv));
    EXPECT_NE(sha256Hex("\xEF\xBB\xBF"
                        "abc"),
              sha256Hex("abc"));
    EXPECT_EQ(sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(DigestHelpersTest, FindEveryCharacterOfUnicodesBreakTest) {
    std::size_t passed = 0;
    const auto cases = tests::graphemeBreakCases();
    for (const auto& [line, characters] : cases) {
        std::string text;
        for (const auto& character : characters) {
            text += character;
        }
        bool right = !characterAt(static_cast<std::int64_t>(characters.size()), text);
        for (std::int64_t position = 0; const auto& character : characters) {
            right = right && characterAt(position++, text) == character;
        }
        EXPECT_TRUE(right) << line;
        passed += right ? 1 : 0;
    }
    EXPECT_GE(cases.size(), 602U);
    std::cout << "GraphemeBreakTest.txt: " << passed << "/" << cases.size() << '\n';
}

TEST(DigestHelpersTest, FindNoCharacterOutsideTheText) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(characterAt(0, ""), std::nullopt);
    EXPECT_EQ(characterAt(0, "abc"), "a");
    EXPECT_EQ(characterAt(2, "abc"), "c");
    EXPECT_EQ(characterAt(1, "e\xCC\x81x"), "x");
    EXPECT_EQ(characterAt(2, "e\xCC\x81x"), std::nullopt);
    for (const auto position : {std::int64_t{3}, std::int64_t{-1}, largest, std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(characterAt(position, "abc"), std::nullopt) << position;
        EXPECT_EQ(characterAt(position, std::string(1000, 'x').substr(0, 3)), std::nullopt) << position;
    }
}

} // namespace quorvale::model
