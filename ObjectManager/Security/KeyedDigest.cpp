#include "ObjectManager/Security/KeyedDigest.h"

#include <cstddef>
#include <cstdint>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include "ObjectManager/Security/Random.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

void require(bool done) {
    if (!done) {
        throw TeskBaseException("Security::DigestKey", "The cryptographic library failed",
                                CIM_ERR_FAILED);
    }
}

void update(EVP_MAC_CTX* context, const void* bytes, std::size_t length) {
    require(EVP_MAC_update(context, static_cast<const unsigned char*>(bytes), length) == 1);
}

}  // namespace

void DigestKey::Release::operator()(EVP_MAC_CTX* context) const noexcept {
    EVP_MAC_CTX_free(context);
}

DigestKey::DigestKey() {
    const std::unique_ptr<EVP_MAC, decltype(&EVP_MAC_free)> method(
        EVP_MAC_fetch(nullptr, "HMAC", nullptr), &EVP_MAC_free);
    require(method != nullptr);
    keyed_.reset(EVP_MAC_CTX_new(method.get()));
    require(keyed_ != nullptr);

    char hashName[] = "SHA256";
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, hashName, 0),
        OSSL_PARAM_construct_end(),
    };
    std::array<unsigned char, 32> key = {};
    fillWithRandomBytes(key);
    const bool isReady = EVP_MAC_init(keyed_.get(), key.data(), key.size(), parameters) == 1;
    OPENSSL_cleanse(key.data(), key.size());
    require(isReady);
}

KeyedDigest DigestKey::digest(std::initializer_list<std::string_view> texts) const {
    const Context context(EVP_MAC_CTX_dup(keyed_.get()));
    require(context != nullptr);
    for (const std::string_view text : texts) {
        // The length comes first, so that no byte can move from one text to the next.
        const std::uint64_t length = text.size();
        update(context.get(), &length, sizeof length);
        update(context.get(), text.data(), text.size());
    }
    KeyedDigest digest = {};
    std::size_t length = 0;
    require(EVP_MAC_final(context.get(), digest.data(), &length, digest.size()) == 1);
    return digest;
}

}  // namespace Security
