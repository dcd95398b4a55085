#include "ObjectManager/Commands/Reloader.h"

#include <exception>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "ObjectManager/Commands/ModelOptions.h"
#include "ObjectManager/Commands/ServiceLog.h"
#include "ObjectManager/Commands/ServiceUsers.h"
#include "Platform/Util/TeskBaseException.h"

namespace Commands {

namespace {

template <typename Work>
std::optional<std::string> failureOf(const Work& work) {
    try {
        work();
        return std::nullopt;
    } catch (const TeskBaseException& error) {
        return error.getMessage().data();
    } catch (const std::exception& error) {
        return error.what();
    }
}

void logLines(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        logService(TeskTraceLog::SeverityError, line);
}

}  // namespace

Reloader::Reloader(Service& service, ReadSettings readSettings,
                   const Configuration::Settings& settings, const FileStamp& passwordFile)
    : service_(service),
      readSettings_(std::move(readSettings)),
      settings_(settings),
      passwordFile_(passwordFile) {}

void Reloader::reloadAll() {
    std::ostringstream faults;
    const std::optional<std::string> reason = failureOf([&] { readAll(faults); });
    if (!reason)
        return;
    logLines(faults.str());
    logService(TeskTraceLog::SeverityError, "Not reloaded, going on as before: " + *reason);
}

void Reloader::reloadUsersIfChanged() {
    const FileStamp passwordFile = FileStamp::of(settings_.security.passwordFile);
    if (settings_.security.passwordFile.empty() || passwordFile == passwordFile_)
        return;
    passwordFile_ = passwordFile;
    const std::optional<std::string> reason = failureOf([&] {
        service_.setUsers(loadUsers(settings_.security).users);
        logService(TeskTraceLog::SeverityInformation, "The users have changed");
    });
    if (reason)
        logService(TeskTraceLog::SeverityError, "The users stay as they were: " + *reason);
}

void Reloader::readAll(std::ostream& faults) {
    Configuration::Settings settings = readSettings_(faults);
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(settings, faults);
    keepPasswordFile(settings);
    const FileStamp passwordFile = FileStamp::of(settings.security.passwordFile);
    std::optional<Security::UserTable> users;
    if (!settings.security.passwordFile.empty())
        users = loadUsers(settings.security).users;
    service_.setRepository(repository);
    if (users)
        service_.setUsers(*std::move(users));
    passwordFile_ = passwordFile;
    warnOfWhatNeedsAStart(settings);
    settings_.security.passwordFile = settings.security.passwordFile;
    logService(TeskTraceLog::SeverityInformation, "Reloaded: " + contentText(*repository));
}

// A password that was made for a running service could not be told to anybody.
void Reloader::keepPasswordFile(Configuration::Settings& settings) const {
    if (!settings.security.passwordFile.empty() || settings_.security.passwordFile.empty())
        return;
    settings.security.passwordFile = settings_.security.passwordFile;
    logService(TeskTraceLog::SeverityWarning,
               "No password file is configured any more; the users stay until the next start");
}

void Reloader::warnOfWhatNeedsAStart(const Configuration::Settings& settings) const {
    if (settings.server != settings_.server || settings.log != settings_.log ||
        settings.security.credentialLifetime != settings_.security.credentialLifetime)
        logService(TeskTraceLog::SeverityWarning,
                   "What has changed in [server], in [log] or in credential_lifetime takes effect "
                   "at the next start");
}

}  // namespace Commands
