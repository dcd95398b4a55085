#pragma once

#include <string>

#include "ObjectManager/Security/SecretText.h"

namespace Commands {

/// Reads a new password from the file descriptor `input`.
///
/// If `input` is a terminal, asks for the password twice at the terminal of the process and does
/// not show what is typed. If a signal ends or stops the process meanwhile, such as Ctrl-C, the
/// terminal shows again what is typed.
///
/// Otherwise reads one line, and no byte after it. The end of the line is not part of the password.
///
/// Errors: TeskBaseException when the password is not valid, the two differ, or reading fails.
[[nodiscard]] Security::SecretText readNewPassword(int input);

/// Reads a password that another program has set, at the terminal of the process, and does not show
/// what is typed; signals as above.
/// Errors: TeskBaseException when there is no terminal, or nothing is typed.
[[nodiscard]] Security::SecretText readPassword(const std::string& prompt);

}  // namespace Commands
