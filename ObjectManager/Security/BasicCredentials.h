#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ObjectManager/Security/SecretText.h"

namespace Security {

/// Who a caller claims to be, by HTTP's scheme Basic (RFC 7617), in UTF-8.
struct BasicCredentials {
    std::string user;
    SecretText password;
};

/// Reads the value of a field "Authorization". Nothing when it is of another scheme, malformed, or
/// names what can be no user or no password: such a caller needs no further check.
[[nodiscard]] std::optional<BasicCredentials> parseBasicCredentials(std::string_view field);

}  // namespace Security
