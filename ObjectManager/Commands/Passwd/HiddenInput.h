#pragma once

#include <string_view>

#include "ObjectManager/Security/SecretText.h"

namespace Commands {

/// Reads a line from the terminal `input` without showing what is typed, after `prompt` was written
/// to `prompts`; both are file descriptors. The end of the line is no part of it.
///
/// A signal that ends or stops the process, such as Ctrl-C, does so when the terminal shows again
/// what is typed. Who goes on after a stop is prompted anew.
///
/// Errors: TeskBaseException when `input` is no terminal or cannot be read.
[[nodiscard]] Security::SecretText readHidden(int input, int prompts, std::string_view prompt);

}  // namespace Commands
