#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "ObjectManager/Security/SecretText.h"

// What may be a user name and a password, wherever they come from, and how HTTP carries them. All
// functions may be used by several threads at once.

namespace Security {

/// The longest user name in bytes.
constexpr std::size_t kMaxUserNameLength = 255;

/// The longest password in bytes; crypt(3) takes no more.
constexpr std::size_t kMaxPasswordLength = 511;

/// What is wrong with `name` as a user name, such as "it is empty"; empty if nothing is. Names are
/// UTF-8 without control characters and colons (RFC 7617, section 2).
[[nodiscard]] std::string_view validateUserName(std::string_view name) noexcept;

/// What is wrong with `password` as a password, such as "it is empty"; empty if nothing is.
/// Passwords are UTF-8 without control characters.
[[nodiscard]] std::string_view validatePassword(std::string_view password) noexcept;

/// A user name and a password; both are valid.
struct Credentials {
    std::string user;
    SecretText password;
};

/// Reads the value of the header field "Authorization" by the scheme Basic (RFC 7617), in UTF-8.
/// Nothing if it has another scheme, is malformed, or if user name or password are not valid.
[[nodiscard]] std::optional<Credentials> parseBasicCredentials(std::string_view fieldValue);

/// Decodes Base64 (RFC 4648, section 4). Nothing unless `text` is the one encoding of some bytes:
/// padded, without white space, unused bits zero.
[[nodiscard]] std::optional<SecretText> decodeBase64(std::string_view text);

}  // namespace Security
