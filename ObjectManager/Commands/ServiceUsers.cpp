#include "ObjectManager/Commands/ServiceUsers.h"

#include <utility>

#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/RandomPassword.h"
#include "Platform/Util/TSKLog.h"

namespace Commands {

namespace {

void warnOfNoUsers(const std::string& passwordFile) {
    const std::string message =
        "Nobody is let in: " + passwordFile + " has no users; \"tesk passwd\" adds them";
    TSKLog::log("tesk", TSKString(message), TeskTraceLog::SeverityWarning,
                TeskTraceLog::VerbosityNormal, 0, TSKLog::CIMOMLOG);
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
