#include "ObjectManager/Commands/ServiceUsers.h"

#include <utility>

#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/RandomPassword.h"

namespace Commands {

ServiceUsers loadUsers(const Configuration::SecuritySettings& settings) {
    ServiceUsers loaded;
    if (!settings.passwordFile.empty()) {
        loaded.users = Security::PasswordFile::read(settings.passwordFile).users();
        return loaded;
    }
    loaded.madePassword = Security::makeRandomPassword();
    loaded.users = Security::UserTable(
        {{.name = kMadeUser, .passwordHash = Security::hashPassword(loaded.madePassword)}});
    return loaded;
}

}  // namespace Commands
