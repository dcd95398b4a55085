#pragma once

#include <span>

#include "ObjectManager/Security/SecretText.h"

// Secrets from the random source of the system. Both functions may be used by several threads at
// once.

namespace Security {

/// Fills `bytes`, at most 256.
/// Errors: TeskBaseException when the system has no random bytes.
void fillWithRandomBytes(std::span<unsigned char> bytes);

/// A new password of 20 characters out of 32 (100 bits). It has no characters that are mistaken for
/// each other when it is read out.
/// Errors: TeskBaseException when the system has no random bytes.
[[nodiscard]] SecretText generatePassword();

}  // namespace Security
