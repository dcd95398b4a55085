#include "ObjectManager/Security/RandomPassword.h"

#include <array>
#include <openssl/crypto.h>
#include <string_view>

#include "ObjectManager/Security/RandomBytes.h"

namespace Security {

namespace {

constexpr std::size_t kLength = 20;

// Neither l and 1 nor o and 0. As many as 5 bits count, so that all are equally likely.
constexpr std::string_view kAlphabet = "abcdefghijkmnpqrstuvwxyz23456789";
static_assert(kAlphabet.size() == 32);

}  // namespace

SecretText makeRandomPassword() {
    std::array<unsigned char, kLength> bytes = {};
    fillWithRandomBytes(bytes.data(), bytes.size());
    SecretText password;
    for (const unsigned char byte : bytes)
        password.append(kAlphabet[byte % kAlphabet.size()]);
    OPENSSL_cleanse(bytes.data(), bytes.size());
    return password;
}

}  // namespace Security
