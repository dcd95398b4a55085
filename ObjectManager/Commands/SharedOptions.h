#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Commands/CommandLine.h"

// Options that several commands have.

namespace Commands {

/// Which classes a command works on: `--namespace`, `--include-path` and `--config`.
struct ModelOptions {
    std::vector<std::string> namespaces;  ///< "NAME=PATH" each; the command line has checked them
    std::string configuration;            ///< the file; empty for none
    std::vector<std::string> includePath = {};  ///< besides that of the configuration
};

/// Adds `--namespace`, `--include-path` and `--config` to a command.
void addModelOptions(Command& command, ModelOptions& options);

/// `--published-address URL`.
[[nodiscard]] Option publishedAddressOption(std::optional<std::string>& address);

enum class OutputFormat : std::uint8_t { kText, kJson };

/// `--format text|json`.
[[nodiscard]] Option formatOption(OutputFormat& format);

/// `--jobs N`; `help` says what is done by so many threads.
[[nodiscard]] Option jobsOption(unsigned& jobs, const std::string& help);

}  // namespace Commands
