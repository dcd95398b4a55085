#include "ObjectManager/Commands/ServerOptions.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <unistd.h>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/CimServer.h"
#include "ObjectManager/Commands/PasswordInput.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Commands::ServerOptions", TSKString(message),
                            CIM_ERR_INVALID_PARAMETER);
}

}  // namespace

void addServerOptions(Command& command, ServerArguments& arguments) {
    command.options.push_back(
        {.name = kServerOption,
         .value = "URL",
         .help = "The CIM server that has the classes: https://HOST[:PORT] or http://HOST[:PORT]; "
                 "the port is 5989 or 5988 by default",
         .target = &arguments.url,
         .check = CimXml::requireServerUrl});
    command.options.push_back(
        {.name = "--server-user",
         .value = "USER",
         .help = "The user at the server; without it, ~/.netrc is searched for the host",
         .target = [&arguments](const std::string& user) { arguments.user = user; },
         .check = Configuration::parseServerUser,
         .needs = kServerOption});
    command.options.push_back(
        {.name = "--server-password-file",
         .value = "FILE",
         .help = "A file with the user's password, which nobody else may read; without it, the "
                 "password is asked for at the terminal",
         .target = &arguments.passwordFile,
         .needs = "--server-user"});
    command.options.push_back(
        {.name = "--server-cacert",
         .value = "FILE",
         .help = "Certificates of authorities, in PEM, instead of those that the system trusts",
         .target = &arguments.authoritiesFile,
         .needs = kServerOption});
    command.options.push_back({.name = "--server-certificate",
                               .value = "FILE",
                               .help = "A certificate to show to the server, in PEM",
                               .target = &arguments.certificateFile,
                               .needs = kServerOption});
    command.options.push_back(
        {.name = "--server-key",
         .value = "FILE",
         .help = "The key of that certificate, in PEM; by default in the same file",
         .target = &arguments.keyFile,
         .needs = "--server-certificate"});
    command.options.push_back(
        {.name = "--server-insecure",
         .help = "Accept any certificate of the server, also that of an attacker, who gets the "
                 "password then",
         .target = &arguments.isInsecure,
         .needs = kServerOption});
    command.options.push_back({.name = "--server-timeout",
                               .value = "SECONDS",
                               .help = "How long reading a namespace may take (default: 300)",
                               .target = &arguments.timeout,
                               .range = {{.least = 1, .most = 86'400}},
                               .needs = kServerOption});
}

void askForPassword(ServerArguments& arguments) {
    if (arguments.url.empty() || !arguments.user || !arguments.passwordFile.empty())
        return;
    if (isatty(STDIN_FILENO) == 0)
        fail("a password is needed: --server-password-file FILE, or a terminal to type it at");
    arguments.password = readPassword("Password of " + Base::logText(*arguments.user) + " at " +
                                      arguments.url + ": ")
                             .view();
}

Loading::ServerSource serverSource(const ServerArguments& arguments) {
    Loading::ServerSource source = {.name = kServerOption,
                                    .options = {.url = arguments.url},
                                    .passwordFile = arguments.passwordFile};
    CimXml::ServerOptions& options = source.options;
    if (arguments.user) {
        options.user = *arguments.user;
        options.password = arguments.password;
    }
    options.authoritiesFile = arguments.authoritiesFile;
    options.certificateFile = arguments.certificateFile;
    options.keyFile = arguments.keyFile;
    options.verifiesCertificate = !arguments.isInsecure;
    if (arguments.timeout)
        options.limits.setTotalTimeout(std::chrono::seconds(*arguments.timeout));
    return source;
}

std::string complete(CimXml::ServerOptions& options) {
    const char* const home = std::getenv("HOME");
    if (options.user.empty() && home != nullptr && *home != '\0')
        options.netrcFile = std::string(home) + "/.netrc";
    if (options.verifiesCertificate)
        return {};
    return "tesk: warning: the certificate of " + options.url +
           " is not verified: anybody on the way there can pretend to be the server, and gets the "
           "password\n";
}

}  // namespace Commands
