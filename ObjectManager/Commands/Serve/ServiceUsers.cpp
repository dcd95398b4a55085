#include "ObjectManager/Commands/Serve/ServiceUsers.h"

#include <utility>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/RandomPassword.h"

namespace Commands {

namespace {

void warnOfNoUsers(const std::string& passwordFile) {
    Base::log("tesk", TeskTraceLog::SeverityWarning,
              "Nobody is let in: " + passwordFile + " has no users; \"tesk passwd\" adds them");
}

}  // namespace

ServiceUsers loadUsers(const Configuration::SecuritySettings& settings) {
    ServiceUsers loaded;
    if (!settings.passwordFile.empty()) {
        loaded.users = Security::PasswordFile::read(settings.passwordFile).users();
        if (loaded.users.users().empty())
            warnOfNoUsers(settings.passwordFile);
        return loaded;
    }
    loaded.madePassword = Security::makeRandomPassword();
    loaded.users = Security::UserTable(
        {{.name = kMadeUser, .passwordHash = Security::hashPassword(loaded.madePassword)}});
    return loaded;
}

}  // namespace Commands
