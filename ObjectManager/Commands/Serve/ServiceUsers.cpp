#include "ObjectManager/Commands/Serve/ServiceUsers.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/Random.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

// Where a file of this process may be, the best place first.
std::vector<std::string> directoriesForNotes() {
    std::vector<std::string> directories;
    for (const char* const name : {"XDG_RUNTIME_DIR", "TMPDIR"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && value[0] == '/')
            directories.emplace_back(value);
    }
    directories.emplace_back("/tmp");
    return directories;
}

}  // namespace

ServiceUsers loadUsers(const Security::Options& options) {
    ServiceUsers loaded;
    if (options.passwordFile.empty()) {
        loaded.generatedPassword = Security::generatePassword();
        loaded.users = Security::UserTable(
            {{.name = kTemporaryUser,
              .passwordHash = Security::hashPassword(loaded.generatedPassword)}});
        return loaded;
    }
    loaded.users = Security::PasswordFile::read(options.passwordFile).users();
    if (loaded.users.users().empty()) {
        Base::log("tesk", TeskTraceLog::SeverityWarning,
                  "Every request is refused: " + options.passwordFile +
                      " has no users; \"tesk passwd\" adds them");
    }
    return loaded;
}

PasswordNote::PasswordNote(const Security::SecretText& password) {
    Base::FileDescriptor file;
    for (const std::string& directory : directoriesForNotes()) {
        path_ = directory + "/tesk-password-XXXXXX";
        file = Base::FileDescriptor(mkostemp(path_.data(), O_CLOEXEC));  // with the mode 0600
        if (file.isOpen())
            break;
    }
    try {
        if (!file.isOpen())
            throw std::system_error(errno, std::generic_category());
        Base::writeAll(file, kTemporaryUser);
        Base::writeAll(file, ":");
        Base::writeAll(file, password.view());
        Base::writeAll(file, "\n");
        file.close();
    } catch (const std::system_error& error) {
        (void)unlink(path_.c_str());
        const std::string message =
            path_ +
            ": the password that was generated cannot be written: " + error.code().message() +
            "; make a password file with \"tesk passwd\"";
        throw TeskBaseException("Commands::PasswordNote", TSKString(message), CIM_ERR_FAILED);
    }
}

PasswordNote::~PasswordNote() {
    (void)unlink(path_.c_str());
}

}  // namespace Commands
