#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Commands/CommandLine.h"
#include "ObjectManager/Commands/ServerOptions.h"

// Options that several commands have.

namespace Commands {

/// Which classes a command works on.
struct ModelOptions {
    /// "NAME=PATH" each, or with a server "NAME[=REMOTE]"; the command line has checked them.
    std::vector<std::string> namespaces;

    std::string configuration;                  ///< the file; empty for none
    std::vector<std::string> includePath = {};  ///< besides that of the configuration
    ServerArguments server = {};
    std::vector<std::string> serverClasses = {};  ///< names and patterns; empty for all
};

/// Adds `--namespace`, `--include-path`, `--config`, `--server` with what belongs to it, and
/// `--server-class` to a command.
void addModelOptions(Command& command, ModelOptions& options);

/// `--published-address URL`.
[[nodiscard]] Option publishedAddressOption(std::optional<std::string>& address);

/// `--include-path DIR`, several times.
[[nodiscard]] Option includePathOption(std::vector<std::string>& includePath);

/// `--host HOST[:PORT]`; `help` says what the host is for.
[[nodiscard]] Option hostOption(std::string& host, const std::string& help);

/// What documents name when no host is given: the port is the one of WS-Management over HTTP.
constexpr const char* kDefaultHost = "localhost:5985";

enum class OutputFormat : std::uint8_t { kText, kJson };

/// `--format text|json`.
[[nodiscard]] Option formatOption(OutputFormat& format);

/// `--jobs N`; `help` says what is done by so many threads.
[[nodiscard]] Option jobsOption(unsigned& jobs, const std::string& help);

}  // namespace Commands
