#include "ObjectManager/Commands/Serve/ServiceUsers.h"

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/Random.h"

namespace Commands {

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

}  // namespace Commands
