#include "platform/digest/Digest.hpp"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <string>
#include <thread>
#include <vector>

namespace quorvale::platform::digest {

TEST(DigestTest, GivesMD5WhereThePolicyForbidsIt) {
    ASSERT_EQ(EVP_set_default_properties(nullptr, "fips=yes"), 1);
    EXPECT_EQ(EVP_MD_fetch(nullptr, "MD5", nullptr), nullptr);
    const auto allowed = md5("abc");
    ASSERT_EQ(EVP_set_default_properties(nullptr, ""), 1);
    EXPECT_EQ(allowed[0], 0x90);
    EXPECT_EQ(allowed[15], 0x72);
}

TEST(DigestTest, TellsAlgorithmsAndThreadsApart) {
    const std::string text(1'000'000, 'x');
    const auto md5OfText = md5(text);
    const auto sha256OfText = sha256(text);
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                EXPECT_EQ(md5(text), md5OfText);
                EXPECT_EQ(sha256(text), sha256OfText);
                EXPECT_NE(sha256(""), sha256OfText);
            }
        });
    }
}

} // namespace quorvale::platform::digest
