#pragma once

#include "ObjectManager/Security/SecretText.h"

namespace Security {

/// A new password from the random source of the system: 20 characters of 32, that is 100 bits,
/// none of which is mistaken for another when it is read out.
/// Errors: TeskBaseException when the system gives no random bytes.
[[nodiscard]] SecretText makeRandomPassword();

}  // namespace Security
