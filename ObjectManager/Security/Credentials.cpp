#include "ObjectManager/Security/Credentials.h"

#include <algorithm>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Utf8.h"

namespace Security {

namespace {

// Whether `text` is UTF-8 without control characters, as Basic authentication demands of user names
// and passwords (RFC 7617, section 2).
bool isCredentialText(std::string_view text) noexcept {
    for (std::size_t position = 0; position < text.size();) {
        const Base::CodePoint character = Base::decodeCodePoint(text, position);
        if (character.length == 0 || Base::isControlCode(character.code))
            return false;
        position += character.length;
    }
    return true;
}

constexpr std::string_view kScheme = "basic";

// Base64 writes 3 bytes as 4 characters. What is longer than the longest user name and password
// is not decoded.
constexpr std::size_t kMaxEncodedLength = (kMaxUserNameLength + 1 + kMaxPasswordLength + 2) / 3 * 4;

// What follows the scheme and the spaces behind it; empty for another scheme.
std::string_view encodedPart(std::string_view fieldValue) noexcept {
    if (!Base::startsWithIgnoringCase(fieldValue, kScheme))
        return {};
    fieldValue.remove_prefix(kScheme.size());
    const std::size_t spaces = std::min(fieldValue.find_first_not_of(' '), fieldValue.size());
    return spaces == 0 ? std::string_view() : fieldValue.substr(spaces);
}

constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kBase64GroupLength = 4;

std::size_t paddingLength(std::string_view base64) noexcept {
    if (base64.ends_with("=="))
        return 2;
    return base64.ends_with('=') ? 1 : 0;
}

}  // namespace

std::string_view validateUserName(std::string_view name) noexcept {
    if (name.empty())
        return "it is empty";
    if (name.size() > kMaxUserNameLength)
        return "it is longer than 255 bytes";
    if (name.front() == '#')
        return "it begins with #, as comments do";
    if (name.find(':') != std::string_view::npos)
        return "it contains a colon";
    return isCredentialText(name) ? "" : "it contains control characters or is not UTF-8";
}

std::string_view validatePassword(std::string_view password) noexcept {
    if (password.empty())
        return "it is empty";
    if (password.size() > kMaxPasswordLength)
        return "it is longer than 511 bytes";
    return isCredentialText(password) ? "" : "it contains control characters or is not UTF-8";
}

std::optional<Credentials> parseBasicCredentials(std::string_view fieldValue) {
    const std::string_view encoded = encodedPart(fieldValue);
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
    if (!validateUserName(user).empty() || !validatePassword(password).empty())
        return std::nullopt;
    return Credentials{.user = std::string(user), .password = SecretText(password)};
}

// Not by OpenSSL, which accepts white space, misplaced padding and unused bits that are set.
std::optional<SecretText> decodeBase64(std::string_view text) {
    if (text.size() % kBase64GroupLength != 0)
        return std::nullopt;
    text.remove_suffix(paddingLength(text));

    SecretText bytes;
    unsigned bits = 0;
    unsigned bitCount = 0;
    for (const char character : text) {
        const std::size_t value = kBase64Alphabet.find(character);
        if (value == std::string_view::npos)
            return std::nullopt;
        bits = bits << 6U | static_cast<unsigned>(value);
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            bytes.append(static_cast<char>(bits >> bitCount));
            bits &= (1U << bitCount) - 1;
        }
    }
    if (bits != 0)
        return std::nullopt;
    return bytes;
}

}  // namespace Security
