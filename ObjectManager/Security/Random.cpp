#include "ObjectManager/Security/Random.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <openssl/crypto.h>
#include <string_view>
#include <unistd.h>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

constexpr std::size_t kPasswordLength = 20;

// Without l, 1, o and 0. A power of two, so that a random byte picks each with the same
// probability.
constexpr std::string_view kPasswordAlphabet = "abcdefghijkmnpqrstuvwxyz23456789";
static_assert(kPasswordAlphabet.size() == 32);

}  // namespace

void fillWithRandomBytes(std::span<unsigned char> bytes) {
    if (getentropy(bytes.data(), bytes.size()) != 0) {
        throw TeskBaseException(
            "Security::fillWithRandomBytes",
            "The system has no random bytes: " + TSKString(std::strerror(errno)), CIM_ERR_FAILED);
    }
}

SecretText generatePassword() {
    std::array<unsigned char, kPasswordLength> bytes = {};
    fillWithRandomBytes(bytes);
    SecretText password;
    for (const unsigned char byte : bytes)
        password.append(kPasswordAlphabet[byte % kPasswordAlphabet.size()]);
    OPENSSL_cleanse(bytes.data(), bytes.size());
    return password;
}

}  // namespace Security
