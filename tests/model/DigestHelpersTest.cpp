#include "model/DigestHelpers.hpp"

#include <QByteArray>
#include <QString>
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <sstream>
#include <vector>

namespace quorvale::model {

namespace {

/// The `name = value` lines, in their order, of a file of hash test vectors that Debian's python3-cryptography-vectors
/// installs, such as "SHA2/SHA256ShortMsg.rsp".
std::vector<std::pair<std::string, std::string>> vectorsIn(const std::string& file) {
    std::vector<std::pair<std::string, std::string>> vectors;
    std::ifstream stream("/usr/lib/python3/dist-packages/cryptography_vectors/hashes/" + file);
    EXPECT_TRUE(stream) << file << ": is python3-cryptography-vectors installed?";
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line);
        std::string name;
        std::string sign;
        std::string value;
        if (words >> name >> sign >> value && sign == "=") {
            vectors.emplace_back(name, value);
        }
    }
    return vectors;
}

std::string bytesOf(const std::string& hexadecimal) {
    return QByteArray::fromHex(QByteArray::fromStdString(hexadecimal)).toStdString();
}

/// Checks the digests of all messages of a file and says how many there were.
void checkMessages(const std::string& file, std::string (*digest)(std::string_view), std::size_t expectedCount) {
    std::size_t count = 0;
    std::size_t length = 0;
    std::string message;
    for (const auto& [name, value] : vectorsIn(file)) {
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
    for (const auto& [name, value] : vectorsIn("SHA2/SHA256Monte.rsp")) {
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
    EXPECT_EQ(md5Hex("\xC3\xA9"), "66ddcd97cfdeabb2f6fb8a999b4bc76f");
    EXPECT_NE(md5Hex("e\xCC\x81"), md5Hex("\xC3\xA9"));
    EXPECT_EQ(sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_NE(sha256Hex("a\0b"sv), sha256Hex("a"sv));
    EXPECT_NE(sha256Hex("\uFEFFabc"), sha256Hex("abc"));
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
