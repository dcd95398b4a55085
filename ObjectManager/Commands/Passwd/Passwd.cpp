#include "ObjectManager/Commands/Passwd/Passwd.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <unistd.h>

#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Passwd/PasswordInput.h"
#include "ObjectManager/Security/CredentialText.h"
#include "ObjectManager/Security/PasswordFile.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

using Security::PasswordFile;

constexpr const char* kDetails =
    "The file holds a line for each user, with a hash of the password. Only its owner may read "
    "it.\n"
    "On a terminal the password is asked for twice; else it is the first line of standard input.\n"
    "\n"
    "Examples:\n"
    "  tesk passwd /etc/tesk/users alice            add alice, or change her password\n"
    "  tesk passwd /etc/tesk/users alice < secret   the same, with the password from a file\n"
    "  tesk passwd --delete /etc/tesk/users alice   remove alice";

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Commands::runPasswd", TSKString(message), CIM_ERR_FAILED);
}

// Before anybody types a password: whether it could be written down.
void requireUsable(const std::string& file) {
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored))
        static_cast<void>(PasswordFile::read(file));
}

std::string removeUser(const PasswdRequest& request) {
    // There is nothing to remove from a file that does not exist, so none is made.
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
        const std::string_view fault = Security::faultOfUserName(name);
        if (!fault.empty())
            fail("The name cannot be used: " + std::string(fault));
    };
    Command command = {.name = "passwd",
                       .summary = "Sets a user's password, or removes a user",
                       .details = kDetails,
                       .options = {},
                       .run = [request] {
                           const auto readPassword = [] {
                               return readNewPassword(STDIN_FILENO, STDERR_FILENO);
                           };
                           return runPasswd(*request, readPassword, std::cerr);
                       }};
    command.options.push_back({.name = "FILE",
                               .help = "The password file; made if it is missing",
                               .target = &request->file,
                               .isRequired = true});
    command.options.push_back({.name = "USER",
                               .help = "The name of the user",
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
