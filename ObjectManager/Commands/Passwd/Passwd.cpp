#include "ObjectManager/Commands/Passwd/Passwd.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <unistd.h>

#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Passwd/PasswordInput.h"
#include "ObjectManager/Security/Credentials.h"
#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

using Security::PasswordFile;

constexpr const char* kDetails =
    "The file has a line for each user, with a hash of the password. Only its owner may read it.\n"
    "On a terminal, the command asks for the password twice; otherwise the password is the first\n"
    "line of standard input.\n"
    "\n"
    "Examples:\n"
    "  tesk passwd /etc/tesk/users alice            add alice, or change her password\n"
    "  tesk passwd /etc/tesk/users alice < secret   the same, with the password from a file\n"
    "  tesk passwd --delete /etc/tesk/users alice   remove alice";

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Commands::runPasswd", TSKString(message), CIM_ERR_FAILED);
}

// Called before a password is typed that could not be saved.
void requireUsable(const std::string& file) {
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored))
        static_cast<void>(PasswordFile::read(file));
}

std::string removeUser(const PasswdRequest& request) {
    // PasswordFile::change() would create a missing file.
    static_cast<void>(PasswordFile::read(request.file));
    PasswordFile::change(request.file, [&](PasswordFile& file) {
        if (!file.remove(request.user))
            fail(request.file + ": there is no user \"" + request.user + "\"");
    });
    return "Removed the user \"" + request.user + "\" from " + request.file;
}

std::string setPassword(const PasswdRequest& request, const PasswordSource& readPassword) {
    requireUsable(request.file);
    const std::string hash = Security::hashPassword(readPassword(), request.hashing);
    bool isNew = false;
    PasswordFile::change(request.file,
                         [&](PasswordFile& file) { isNew = file.set(request.user, hash); });
    return (isNew ? "Added the user \"" : "Changed the password of the user \"") + request.user +
           (isNew ? "\" to " : "\" in ") + request.file;
}

}  // namespace

Command passwdCommand() {
    const auto request = std::make_shared<PasswdRequest>();
    const auto requireName = [](const std::string& name) {
        const std::string_view fault = Security::validateUserName(name);
        if (!fault.empty())
            fail("The user name cannot be used: " + std::string(fault));
    };
    Command command = {.name = "passwd",
                       .summary = "Sets a user's password, or removes a user",
                       .details = kDetails,
                       .options = {},
                       .run = [request] {
                           const auto readPassword = [] { return readNewPassword(STDIN_FILENO); };
                           return runPasswd(*request, readPassword, std::cerr);
                       }};
    command.options.push_back({.name = "FILE",
                               .help = "The password file; created if it is missing",
                               .target = &request->file,
                               .isRequired = true});
    command.options.push_back({.name = "USER",
                               .help = "The user name",
                               .target = &request->user,
                               .check = requireName,
                               .isRequired = true});
    command.options.push_back(
        {.name = "--delete", .help = "Remove the user", .target = &request->isRemoval});
    return command;
}

int runPasswd(const PasswdRequest& request, const PasswordSource& readPassword,
              std::ostream& messages) {
    try {
        messages << (request.isRemoval ? removeUser(request) : setPassword(request, readPassword))
                 << "\n";
        return EXIT_SUCCESS;
    } catch (const TeskBaseException& exception) {
        messages << "tesk passwd: " << exception.getMessage() << "\n";
        return EXIT_FAILURE;
    }
}

}  // namespace Commands
