#include "platform/digest/Digest.hpp"

#include <openssl/evp.h>
#include <openssl/provider.h>

#include <memory>
#include <stdexcept>

namespace quorvale::platform::digest {

namespace {

template <auto Free>
struct Freed {
    void operator()(auto* object) const { Free(object); }
};

using Context = std::unique_ptr<EVP_MD_CTX, Freed<EVP_MD_CTX_free>>;

/// The library's own implementation of an algorithm. A library context of ours reads no configuration file, so no
/// policy of the system applies to it.
const EVP_MD* fetch(const char* algorithm) {
    static auto* const library = [] {
        auto* const context = OSSL_LIB_CTX_new();
        if (context) {
            OSSL_PROVIDER_load(context, "default");
        }
        return context;
    }();
    return library ? EVP_MD_fetch(library, algorithm, "-fips") : nullptr;
}

template <std::size_t Size>
std::array<std::uint8_t, Size> digest(const EVP_MD* algorithm, EVP_MD_CTX* context, std::string_view bytes) {
    std::array<std::uint8_t, Size> result{};
    if (!algorithm || !context || EVP_DigestInit_ex2(context, algorithm, nullptr) != 1 ||
        EVP_DigestUpdate(context, bytes.data(), bytes.size()) != 1 ||
        EVP_DigestFinal_ex(context, result.data(), nullptr) != 1) {
        throw std::runtime_error("OpenSSL gives no digest");
    }
    return result;
}

} // namespace

std::array<std::uint8_t, 16> md5(std::string_view bytes) {
    static const auto* const algorithm = fetch("MD5");
    thread_local const Context context(EVP_MD_CTX_new());
    return digest<16>(algorithm, context.get(), bytes);
}

std::array<std::uint8_t, 32> sha256(std::string_view bytes) {
    static const auto* const algorithm = fetch("SHA256");
    thread_local const Context context(EVP_MD_CTX_new());
    return digest<32>(algorithm, context.get(), bytes);
}

} // namespace quorvale::platform::digest
