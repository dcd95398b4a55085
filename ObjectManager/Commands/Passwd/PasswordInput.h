#pragma once

#include "ObjectManager/Security/SecretText.h"

namespace Commands {

/// Reads a new password from the file descriptor `input`. From a terminal: asks for it twice, with
/// prompts on the file descriptor `prompts`, and does not show what is typed. From anything else:
/// one line, and not a byte behind it. The end of the line is no part of the password.
/// Errors: TeskBaseException when it is no valid password, the two differ, or reading fails.
[[nodiscard]] Security::SecretText readNewPassword(int input, int prompts);

}  // namespace Commands
