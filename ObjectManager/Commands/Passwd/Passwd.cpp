#include "ObjectManager/Commands/Passwd/Passwd.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <unistd.h>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/PasswordInput.h"
#include "ObjectManager/Security/Credentials.h"
#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

using Security::PasswordFile;

constexpr const char* kDetails =
    "The file has a line for each user, with a hash of the password. Only its owner may read\n"
    "it, and the group of the service. On a terminal, the command asks for the password twice;\n"
    "otherwise the password is the first line of standard input.\n"
    "\n"
    "Examples:\n"
    "  tesk passwd /etc/tesk/users alice            add alice, or change her password\n"
    "  tesk passwd /etc/tesk/users alice < secret   the same, with the password from a file\n"
    "  tesk passwd --delete /etc/tesk/users alice   remove alice";

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Commands::runPasswd", TSKString(message), CIM_ERR_FAILED);
}

// A process that hangs with the lock keeps this one from its work.
Security::LockWait lockWait(std::ostream& messages) {
    return {.tell = [&messages](const std::string& directory) {
        messages << "tesk passwd: waiting for another process, which has locked " << directory
                 << "\n";
        messages.flush();
    }};
}

std::string removeUser(const PasswdRequest& request, std::ostream& messages) {
    // PasswordFile::change() would create a missing file.
    std::error_code error;
    if (std::filesystem::status(request.file, error).type() ==
        std::filesystem::file_type::not_found) {
        fail(request.file + ": cannot be read: " +
             std::make_error_code(std::errc::no_such_file_or_directory).message());
    }
    PasswordFile::change(
        request.file,
        [&](PasswordFile& file) {
            if (!file.remove(request.user))
                fail(request.file + ": there is no user " + Base::quoted(request.user));
        },
        lockWait(messages));
    return "Removed the user " + Base::quoted(request.user) + " from " + request.file;
}

std::string setPassword(const PasswdRequest& request, const PasswordSource& readPassword,
                        std::ostream& messages) {
    // Before a password is typed that could not be saved.
    static_cast<void>(PasswordFile::readForChange(request.file));
    const std::string hash = Security::hashPassword(readPassword(), request.hashing);
    bool isNew = false;
    PasswordFile::change(
        request.file, [&](PasswordFile& file) { isNew = file.set(request.user, hash); },
        lockWait(messages));
    return (isNew ? "Added the user " : "Changed the password of the user ") +
           Base::quoted(request.user) + (isNew ? " to " : " in ") + request.file;
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
        messages << (request.isRemoval ? removeUser(request, messages)
                                       : setPassword(request, readPassword, messages))
                 << "\n";
        return EXIT_SUCCESS;
    } catch (const TeskBaseException& exception) {
        messages << "tesk passwd: " << exception.getMessage() << "\n";
        return EXIT_FAILURE;
    }
}

}  // namespace Commands
