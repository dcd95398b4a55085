#include "ObjectManager/Commands/Serve/Reloader.h"

#include <exception>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Commands/Serve/ServiceUsers.h"

namespace Commands {

namespace {

template <typename Work>
std::optional<std::string> failureOf(const Work& work) {
    try {
        work();
        return std::nullopt;
    } catch (const std::exception& error) {
        return std::string(Base::reasonOf(error));
    }
}

void logLines(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        Base::log("tesk", TeskTraceLog::SeverityError, line);
}

}  // namespace

Reloader::Reloader(Service& service, ReadSettings readSettings,
                   const Configuration::Settings& settings, const Base::FileVersion& passwordFile)
    : service_(service),
      readSettings_(std::move(readSettings)),
      settings_(settings),
      passwordFile_(passwordFile) {}

void Reloader::reloadAll() {
    std::ostringstream messages;
    const std::optional<std::string> reason = failureOf([&] { readAll(messages); });
    if (!reason)
        return;
    logLines(messages.str());
    Base::log("tesk", TeskTraceLog::SeverityError,
              "Not reloaded, the service goes on as before: " + *reason);
}

void Reloader::reloadUsersIfChanged() {
    const Base::FileVersion passwordFile = Base::FileVersion::of(settings_.security.passwordFile);
    if (settings_.security.passwordFile.empty() || passwordFile == passwordFile_)
        return;
    passwordFile_ = passwordFile;
    const std::optional<std::string> reason = failureOf([&] {
        service_.setUsers(loadUsers(settings_.security).users);
        Base::log("tesk", TeskTraceLog::SeverityInformation, "The users have changed");
    });
    if (reason)
        Base::log("tesk", TeskTraceLog::SeverityError, "The users stay as they were: " + *reason);
}

void Reloader::readAll(std::ostream& messages) {
    Configuration::Settings settings = readSettings_(messages);
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(settings, messages);
    keepPasswordFile(settings);
    const Base::FileVersion passwordFile = Base::FileVersion::of(settings.security.passwordFile);
    std::optional<Security::UserTable> users;
    if (!settings.security.passwordFile.empty())
        users = loadUsers(settings.security).users;
    const std::string done = "Reloaded: " + contentText(*repository);
    service_.replace(repository, std::move(users));
    // Nothing below may throw: reloadAll() would log that nothing was reloaded.
    passwordFile_ = passwordFile;
    warnOfSettingsThatNeedARestart(settings);
    settings_.security.passwordFile.swap(settings.security.passwordFile);
    Base::log("tesk", TeskTraceLog::SeverityInformation, done);
}

// A password that is generated while the service runs could not be shown to the user.
void Reloader::keepPasswordFile(Configuration::Settings& settings) const {
    if (!settings.security.passwordFile.empty() || settings_.security.passwordFile.empty())
        return;
    settings.security.passwordFile = settings_.security.passwordFile;
    Base::log("tesk", TeskTraceLog::SeverityWarning,
              "No password file is configured any more; the users stay until the next start");
}

void Reloader::warnOfSettingsThatNeedARestart(const Configuration::Settings& settings) const {
    if (settings.server != settings_.server || settings.log != settings_.log ||
        settings.security.credentialLifetime != settings_.security.credentialLifetime)
        Base::log("tesk", TeskTraceLog::SeverityWarning,
                  "Changes of [server], [log] and credential_lifetime take effect at the next "
                  "start");
}

}  // namespace Commands
