#pragma once

#include <cstddef>
#include <string_view>

// What may stand in names and passwords, wherever they come from.

namespace Security {

/// Names of users are at most so many bytes long.
constexpr std::size_t kMaxUserNameLength = 255;

/// Passwords are at most so many bytes long; crypt(3) takes no more.
constexpr std::size_t kMaxPasswordLength = 511;

/// Whether `text` is UTF-8 without control characters, as names and passwords of Basic
/// authentication must be (RFC 7617, section 2).
[[nodiscard]] bool isCredentialText(std::string_view text) noexcept;

/// What is wrong with `name` as the name of a user, as in "it is empty"; empty when nothing is.
[[nodiscard]] std::string_view faultOfUserName(std::string_view name) noexcept;

/// What is wrong with `password` as a password, as in "it is empty"; empty when nothing is.
[[nodiscard]] std::string_view faultOfPassword(std::string_view password) noexcept;

}  // namespace Security
