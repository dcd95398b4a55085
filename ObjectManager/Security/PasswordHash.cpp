#include "ObjectManager/Security/PasswordHash.h"

#include <algorithm>
#include <cerrno>
#include <crypt.h>
#include <cstddef>
#include <cstring>
#include <memory>
#include <openssl/crypto.h>

#include "ObjectManager/Security/Credentials.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Security {

namespace {

static_assert(kMaxPasswordLength == CRYPT_MAX_PASSPHRASE_SIZE - 1);

[[noreturn]] void fail(const TSKString& message) {
    throw TeskBaseException("Security::PasswordHash", message, CIM_ERR_FAILED);
}

// How many characters follow the last "$" in the hashes of each method (crypt(5)).
struct Method {
    std::string_view prefix;
    std::size_t lastPartLength;
};

constexpr Method kMethods[] = {
    {"$y$", 43},  {"$gy$", 43}, {"$7$", 43}, {"$2a$", 53},   {"$2b$", 53}, {"$2x$", 53},
    {"$2y$", 53}, {"$6$", 86},  {"$5$", 43}, {"$sha1$", 28}, {"$md5", 22}, {"$1$", 22},
};

bool isGraphic(char byte) noexcept {
    return byte > ' ' && byte <= '~';
}

// The memory in which crypt(3) works. It holds traces of the password, so it is wiped.
struct Workspace {
    crypt_data data = {};

    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    ~Workspace() { OPENSSL_cleanse(&data, sizeof data); }

    // The hash of the password; null with errno if crypt(3) fails. Valid as long as this object.
    [[nodiscard]] const char* hash(const SecretText& password, const char* setting) {
        return crypt_rn(password.zeroTerminated(), setting, &data, sizeof data);
    }
};

}  // namespace

std::string hashPassword(const SecretText& password, const PasswordHashOptions& options) {
    if (const std::string_view fault = validatePassword(password.view()); !fault.empty())
        fail("The password cannot be used: " + TSKString(fault));
    char setting[CRYPT_GENSALT_OUTPUT_SIZE];
    if (crypt_gensalt_rn(options.method.c_str(), options.cost, nullptr, 0, setting,
                         sizeof setting) == nullptr)
        fail("This system cannot make such password hashes: " + TSKString(std::strerror(errno)));
    const auto workspace = std::make_unique<Workspace>();
    const char* const hash = workspace->hash(password, setting);
    if (hash == nullptr)
        fail("The password cannot be hashed: " + TSKString(std::strerror(errno)));
    return hash;
}

bool verifyPassword(const SecretText& password, const std::string& hash) {
    // crypt(3) would hash only the part before a zero byte.
    if (!validatePassword(password.view()).empty())
        return false;
    const auto workspace = std::make_unique<Workspace>();
    const char* const made = workspace->hash(password, hash.c_str());
    if (made == nullptr && errno == ENOMEM)
        fail("There is no memory to check a password");
    return made != nullptr && std::strlen(made) == hash.size() &&
           CRYPTO_memcmp(made, hash.data(), hash.size()) == 0;
}

bool isPasswordHash(std::string_view text) {
    if (text.size() >= CRYPT_OUTPUT_SIZE || !std::ranges::all_of(text, isGraphic))
        return false;
    const auto method = std::ranges::find_if(
        kMethods, [&](const Method& candidate) { return text.starts_with(candidate.prefix); });
    if (method == std::end(kMethods))
        return false;
    const int verdict = crypt_checksalt(std::string(text).c_str());
    return (verdict == CRYPT_SALT_OK || verdict == CRYPT_SALT_METHOD_LEGACY) &&
           text.size() - text.rfind('$') - 1 == method->lastPartLength;
}

}  // namespace Security
