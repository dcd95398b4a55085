#pragma once

#include <optional>
#include <string>

#include "ObjectManager/Commands/CommandLine.h"
#include "ObjectManager/Loading/ServerSource.h"

// The CIM server that a command reads classes from, as the command line names it. There is no
// option for a password: every user of the machine can see the command lines of all processes.

namespace Commands {

struct ServerArguments {
    std::string url;  ///< empty for no server; the command line has checked it
    std::optional<std::string> user = {};
    std::string password = {};  ///< that a person has typed
    std::string passwordFile = {};
    std::string authoritiesFile = {};
    std::string certificateFile = {};
    std::string keyFile = {};
    bool isInsecure = false;
    std::optional<unsigned> timeout = {};  ///< in seconds
};

/// Adds `--server`, `--server-user`, `--server-password-file`, `--server-cacert`,
/// `--server-certificate`, `--server-key`, `--server-insecure` and `--server-timeout` to a command.
void addServerOptions(Command& command, ServerArguments& arguments);

/// Asks at the terminal for the password of a user without a password file. Call it once, before
/// threads are started and signals are blocked.
/// Errors: TeskBaseException when there is no terminal, or nothing is typed.
void askForPassword(ServerArguments& arguments);

/// The name of the server in the result of serverSource().
inline constexpr const char* kServerOption = "--server";

/// The server.
[[nodiscard]] Loading::ServerSource serverSource(const ServerArguments& arguments);

/// Completes the options of a server from the command line or from a configuration file: without a
/// user, the host is looked up in the netrc file of the user of this process, "~/.netrc". Returns
/// what is risky about talking to the server in that way, a line for each; empty when nothing is.
[[nodiscard]] std::string complete(CimXml::ServerOptions& options);

}  // namespace Commands
