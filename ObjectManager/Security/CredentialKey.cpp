#include "ObjectManager/Security/CredentialKey.h"

#include <cstdint>
#include <cstring>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include "ObjectManager/Security/RandomBytes.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

void require(bool done) {
    if (!done) {
        throw TeskBaseException("Security::CredentialKey", "The cryptographic library failed",
                                CIM_ERR_FAILED);
    }
}

void add(EVP_MAC_CTX* context, const void* bytes, std::size_t length) {
    require(EVP_MAC_update(context, static_cast<const unsigned char*>(bytes), length) == 1);
}

// With its length in front, so that no bytes can move from one part to the next.
void addPart(EVP_MAC_CTX* context, std::string_view part) {
    const std::uint64_t length = part.size();
    add(context, &length, sizeof length);
    add(context, part.data(), part.size());
}

CredentialDigest finish(EVP_MAC_CTX* context) {
    CredentialDigest digest = {};
    std::size_t length = 0;
    require(EVP_MAC_final(context, digest.data(), &length, digest.size()) == 1);
    return digest;
}

}  // namespace

void CredentialKey::Release::operator()(EVP_MAC_CTX* context) const noexcept {
    EVP_MAC_CTX_free(context);
}

CredentialKey::CredentialKey() {
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
    fillWithRandomBytes(key.data(), key.size());
    const bool isReady = EVP_MAC_init(keyed_.get(), key.data(), key.size(), parameters) == 1;
    OPENSSL_cleanse(key.data(), key.size());
    require(isReady);
}

CredentialDigest CredentialKey::digest(std::string_view user, std::string_view password,
                                       std::string_view passwordHash) const {
    const Context context = start();
    addPart(context.get(), user);
    addPart(context.get(), password);
    addPart(context.get(), passwordHash);
    return finish(context.get());
}

std::size_t CredentialKey::choose(std::string_view name, std::size_t count) const {
    const Context context = start();
    addPart(context.get(), name);
    const CredentialDigest digest = finish(context.get());
    std::uint64_t number = 0;
    std::memcpy(&number, digest.data(), sizeof number);
    return static_cast<std::size_t>(number % count);
}

CredentialKey::Context CredentialKey::start() const {
    Context context(EVP_MAC_CTX_dup(keyed_.get()));
    require(context != nullptr);
    return context;
}

}  // namespace Security
