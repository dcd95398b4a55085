#pragma once

#include <optional>
#include <string_view>

#include "ObjectManager/Security/SecretText.h"

namespace Security {

/// The bytes that `text` stands for in base64 (RFC 4648, section 4). Nothing unless they are
/// written in the one way that is right: padded, without white space, unused bits zero.
[[nodiscard]] std::optional<SecretText> decodeBase64(std::string_view text);

}  // namespace Security
