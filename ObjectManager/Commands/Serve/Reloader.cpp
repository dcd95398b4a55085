#include "ObjectManager/Commands/Serve/Reloader.h"

#include <atomic>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Commands/Serve/ServiceUsers.h"

namespace Commands {

namespace {

// How often it is logged that the password file cannot be read.
constexpr std::chrono::minutes kFailureInterval(1);

void logFailure(std::string_view what, const std::exception& error) noexcept {
    try {
        Base::log("tesk", TeskTraceLog::SeverityError,
                  std::string(what) + ": " + std::string(Base::reasonOf(error)));
    } catch (const std::bad_alloc&) {
        // The line is lost, as one is for which the log itself has no memory.
    }
}

// The messages are those of a terminal. Lines of the log have the program and the severity in
// front.
void logLines(TeskTraceLog::Severity severity, const std::string& text) {
    constexpr std::string_view kPrefix = "tesk: warning: ";
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        Base::log("tesk", severity, line.starts_with(kPrefix) ? line.substr(kPrefix.size()) : line);
}

// Calls `work`; if that throws, calls `fail` with the exception.
template <typename Work, typename Fail>
void attempt(const Work& work, const Fail& fail) noexcept {
    try {
        work();
    } catch (const std::exception& error) {
        fail(error);
    }
}

}  // namespace

// What a thread has read. Belongs to the thread until isDone.
struct Reloader::Reading {
    std::ostringstream messages;
    Configuration::Settings settings;
    TSKSmrPtr<Repository::ClassRepository> classes;
    std::exception_ptr failure;  // null when all was read
    std::atomic<bool> isDone = false;
};

Reloader::Reloader(ReloaderHooks hooks, const Configuration::Settings& settings,
                   const Base::FileVersion& passwordFile)
    : hooks_(std::move(hooks)), settings_(settings), passwordFile_(passwordFile) {}

Reloader::~Reloader() {
    if (thread_.joinable())
        thread_.detach();
}

void Reloader::reload() noexcept {
    if (isReading())
        isAskedAgain_ = true;
    else
        beginReading();
}

void Reloader::goOn() noexcept {
    if (isReading() && reading_->isDone)
        finishReading();
    reloadUsersIfChanged();
}

void Reloader::beginReading() noexcept {
    const auto begin = [this] {
        auto reading = std::make_shared<Reading>();
        auto read = [reading, readSettings = hooks_.readSettings, wake = hooks_.wake] {
            try {
                reading->settings = readSettings(reading->messages);
                reading->classes = loadModel(reading->settings, reading->messages);
            } catch (...) {
                reading->failure = std::current_exception();
            }
            reading->isDone = true;
            wake();
        };
        thread_ = std::thread(std::move(read));
        reading_ = std::move(reading);
    };
    attempt(begin, [](const std::exception& error) {
        logFailure("Not reloaded, the service goes on as before", error);
    });
}

void Reloader::finishReading() noexcept {
    thread_.join();
    const std::shared_ptr<Reading> reading = std::exchange(reading_, nullptr);
    const auto fail = [&](const std::exception& error) {
        attempt([&] { logLines(TeskTraceLog::SeverityError, reading->messages.str()); },
                [](const std::exception&) { /* as in logFailure() */ });
        logFailure("Not reloaded, the service goes on as before", error);
    };
    attempt([&] { use(*reading); }, fail);
    if (std::exchange(isAskedAgain_, false))
        beginReading();
}

void Reloader::use(Reading& reading) {
    if (reading.failure)
        std::rethrow_exception(reading.failure);
    Configuration::Settings& settings = reading.settings;
    keepPasswordFile(settings);
    const Base::FileVersion passwordFile = Base::FileVersion::of(settings.security.passwordFile);
    std::optional<Security::UserTable> users;
    if (!settings.security.passwordFile.empty())
        users = loadUsers(settings.security).users;
    const std::string warnings = reading.messages.str();
    const std::string done = "Reloaded: " + contentText(*reading.classes);
    hooks_.replace(reading.classes, std::move(users));
    // What throws below would have it logged that nothing was reloaded.
    passwordFile_ = passwordFile;
    failedAt_.reset();
    attempt([&] { logLines(TeskTraceLog::SeverityWarning, warnings); },
            [](const std::exception&) { /* as in logFailure() */ });
    warnOfSettingsThatNeedARestart(settings);
    settings_.security.passwordFile.swap(settings.security.passwordFile);
    Base::log("tesk", TeskTraceLog::SeverityInformation, done);
}

// The version is that before the file is read: what is written to it meanwhile changes the version,
// and is read next time.
void Reloader::reloadUsersIfChanged() noexcept {
    if (settings_.security.passwordFile.empty())
        return;
    const Base::FileVersion passwordFile = Base::FileVersion::of(settings_.security.passwordFile);
    if (passwordFile == passwordFile_)
        return;
    const auto read = [&] {
        hooks_.setUsers(loadUsers(settings_.security).users);
        passwordFile_ = passwordFile;
        failedAt_.reset();
        Base::log("tesk", TeskTraceLog::SeverityInformation, "The users have changed");
    };
    attempt(read, [&](const std::exception& error) {
        const std::chrono::steady_clock::time_point now = hooks_.clock();
        if (failedAt_ && now - *failedAt_ < kFailureInterval && passwordFile == failedPasswordFile_)
            return;
        failedAt_ = now;
        failedPasswordFile_ = passwordFile;
        logFailure("The users stay as they were", error);
    });
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
        settings.security.scheme != settings_.security.scheme ||
        settings.security.credentialLifetime != settings_.security.credentialLifetime)
        Base::log("tesk", TeskTraceLog::SeverityWarning,
                  "Changes of [server], [log] and credential_lifetime take effect at the next "
                  "start");
}

}  // namespace Commands
