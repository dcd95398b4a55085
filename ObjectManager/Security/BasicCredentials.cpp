#include "ObjectManager/Security/BasicCredentials.h"

#include <algorithm>
#include <cstddef>

#include "ObjectManager/Security/Base64.h"
#include "ObjectManager/Security/CredentialText.h"

namespace Security {

namespace {

constexpr std::string_view kScheme = "basic";

// Base64 writes 3 bytes with 4 characters. More than the longest name and password need is not
// decoded.
constexpr std::size_t kMaxEncodedLength = (kMaxUserNameLength + 1 + kMaxPasswordLength + 2) / 3 * 4;

bool startsWithScheme(std::string_view field) noexcept {
    const auto sameLetter = [](char letter, char other) {
        return letter == (other >= 'A' && other <= 'Z' ? other - 'A' + 'a' : other);
    };
    return std::ranges::equal(kScheme, field.substr(0, kScheme.size()), sameLetter);
}

// What follows the scheme and the blanks behind it, empty without any.
std::string_view encodedPart(std::string_view field) noexcept {
    if (!startsWithScheme(field))
        return {};
    field.remove_prefix(kScheme.size());
    const std::size_t blanks = std::min(field.find_first_not_of(' '), field.size());
    return blanks == 0 ? std::string_view() : field.substr(blanks);
}

}  // namespace

std::optional<BasicCredentials> parseBasicCredentials(std::string_view field) {
    const std::string_view encoded = encodedPart(field);
    if (encoded.empty() || encoded.size() > kMaxEncodedLength)
        return std::nullopt;
    const std::optional<SecretText> decoded = decodeBase64(encoded);
    if (!decoded)
        return std::nullopt;
    const std::string_view text = decoded->view();
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const std::string_view user = text.substr(0, colon);
    const std::string_view password = text.substr(colon + 1);
    if (!faultOfUserName(user).empty() || !faultOfPassword(password).empty())
        return std::nullopt;
    return BasicCredentials{.user = std::string(user), .password = SecretText(password)};
}

}  // namespace Security
