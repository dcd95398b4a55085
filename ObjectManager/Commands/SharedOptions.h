#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Commands/CommandLine.h"
#include "ObjectManager/Commands/ServerOptions.h"
#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Host/PublishedAddress.h"

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

/// Where the documents that a command makes say that the service is.
struct AddressArguments {
    std::optional<std::string> host = {};
    std::optional<std::string> published = {};
};

/// Adds `--host` and `--published-address` to a command.
void addAddressOptions(Command& command, AddressArguments& arguments);

/// What the arguments say, or else the configuration; by default localhost with the port that is
/// registered for WS-Management over HTTP.
[[nodiscard]] Host::PublishedAddress addressOf(const AddressArguments& arguments,
                                               const Configuration::Settings& settings);

enum class OutputFormat : std::uint8_t { kText, kJson };

/// `--format text|json`.
[[nodiscard]] Option formatOption(OutputFormat& format);

/// `--jobs N`; `help` says what is done by so many threads.
[[nodiscard]] Option jobsOption(unsigned& jobs, const std::string& help);

}  // namespace Commands
