#include "ObjectManager/Commands/Serve/Reloader.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <new>
#include <random>
#include <sstream>
#include <stop_token>
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

double randomFraction() {
    thread_local std::mt19937 generator{std::random_device{}()};
    return std::uniform_real_distribution<double>(0, 1)(generator);
}

// What a thread has read. Belongs to the thread until isDone.
struct Reloader::Reading {
    explicit Reading(What asked) : what(asked) {}

    const What what;
    std::ostringstream messages = {};
    Configuration::Settings settings = {};
    Loading::LoadedRepository loaded = {};
    std::exception_ptr failure = {};  // null when all was read
    std::atomic<bool> isDone = false;
    std::stop_source stop = {};
};

Reloader::Reloader(ReloaderHooks hooks, const Configuration::Settings& settings,
                   Loading::LoadedRepository loaded, const Base::FileVersion& passwordFile)
    : hooks_(std::move(hooks)),
      settings_(settings),
      passwordFile_(passwordFile),
      loaded_(std::make_shared<const Loading::LoadedRepository>(std::move(loaded))),
      schedule_(hooks_.random) {
    schedule(!loaded_->failures.empty());
}

Reloader::~Reloader() {
    if (thread_.joinable())
        thread_.detach();
}

void Reloader::reload() noexcept {
    if (!isReading()) {
        beginReading(What::kEverything);
        return;
    }
    isAskedAgain_ = true;
    if (reading_->what == What::kServers)
        reading_->stop.request_stop();
}

void Reloader::goOn() noexcept {
    if (isReading() && reading_->isDone)
        finishReading();
    if (!isReading() && schedule_.isDue(hooks_.clock()))
        beginReading(What::kServers);
    reloadUsersIfChanged();
}

void Reloader::beginReading(What what) noexcept {
    const auto begin = [&] {
        auto reading = std::make_shared<Reading>(what);
        if (what == What::kServers)
            reading->settings = settings_;
        auto read = [reading, before = loaded_, readSettings = hooks_.readSettings,
                     wake = hooks_.wake] {
            try {
                const bool isRefresh = reading->what == What::kServers;
                if (!isRefresh)
                    reading->settings = readSettings(reading->messages);
                reading->loaded =
                    loadModel(reading->settings, reading->messages,
                              {.before = before.get(),
                               .keepsFiles = isRefresh,
                               .cacheDirectory = reading->settings.refresh.cacheDirectory,
                               .stop = reading->stop.get_token()});
            } catch (...) {
                reading->failure = std::current_exception();
            }
            reading->isDone = true;
            wake();
        };
        thread_ = std::thread(std::move(read));
        reading_ = std::move(reading);
    };
    attempt(begin, [&](const std::exception& error) {
        if (what == What::kServers)
            schedule_.fail(hooks_.clock());
        logFailure("Not reloaded, the service goes on as before", error);
    });
}

void Reloader::finishReading() noexcept {
    thread_.join();
    const std::shared_ptr<Reading> reading = std::exchange(reading_, nullptr);
    bool hasFailed = false;
    const auto fail = [&](const std::exception& error) {
        hasFailed = true;
        if (reading->stop.stop_requested())
            return;
        attempt([&] { logLines(TeskTraceLog::SeverityError, reading->messages.str()); },
                [](const std::exception&) { /* as in logFailure() */ });
        logFailure("Not reloaded, the service goes on as before", error);
        if (reading->what == What::kServers)
            schedule_.fail(hooks_.clock());
        tellEnd(reading->what, false);
    };
    if (reading->what == What::kServers)
        attempt([&] { refresh(*reading); }, fail);
    else
        attempt([&] { use(*reading); }, fail);
    if (!hasFailed)
        tellEnd(reading->what, true);
    if (std::exchange(isAskedAgain_, false))
        beginReading(What::kEverything);
}

void Reloader::tellEnd(What what, bool isDone) const {
    if (what == What::kEverything && hooks_.onReload)
        hooks_.onReload(isDone);
    if (what == What::kServers && hooks_.onRefresh)
        hooks_.onRefresh(isDone ? loaded_->failures.size() : 1);
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
    const TSKSmrPtr<Repository::ClassRepository> classes = reading.loaded.repository;
    const std::string done = "Reloaded: " + contentText(*classes);
    auto loaded = std::make_shared<const Loading::LoadedRepository>(std::move(reading.loaded));
    if (classes.get() != loaded_->repository.get())
        hooks_.replace(classes, std::move(users));
    else if (users)
        hooks_.setUsers(*std::move(users));
    // What throws below would have it logged that nothing was reloaded.
    const std::shared_ptr<const Loading::LoadedRepository> before =
        std::exchange(loaded_, std::move(loaded));
    passwordFile_ = passwordFile;
    failedAt_.reset();
    attempt([&] { logLines(TeskTraceLog::SeverityWarning, warnings); },
            [](const std::exception&) { /* as in logFailure() */ });
    warnOfSettingsThatNeedARestart(settings);
    useSettings(settings);
    tellFailures(*before);
    schedule(!loaded_->failures.empty());
    Base::log("tesk", TeskTraceLog::SeverityInformation, done);
}

// Those that count from now on. Others need a restart.
void Reloader::useSettings(Configuration::Settings& settings) noexcept {
    settings_.security.passwordFile.swap(settings.security.passwordFile);
    settings_.namespaces.swap(settings.namespaces);
    settings_.servers.swap(settings.servers);
    settings_.includePath.swap(settings.includePath);
    settings_.repository = settings.repository;
    std::swap(settings_.refresh, settings.refresh);
}

void Reloader::refresh(Reading& reading) {
    if (reading.failure)
        std::rethrow_exception(reading.failure);
    const TSKSmrPtr<Repository::ClassRepository> classes = reading.loaded.repository;
    const bool isChanged = classes.get() != loaded_->repository.get();
    const std::string warnings = reading.messages.str();
    const std::string done =
        "The classes of the CIM servers have changed: " + contentText(*classes);
    auto loaded = std::make_shared<const Loading::LoadedRepository>(std::move(reading.loaded));
    if (isChanged)
        hooks_.replace(classes, std::nullopt);
    const std::shared_ptr<const Loading::LoadedRepository> before =
        std::exchange(loaded_, std::move(loaded));
    schedule(!loaded_->failures.empty());
    tellFailures(*before);
    if (!isChanged)
        return;
    logLines(TeskTraceLog::SeverityWarning, warnings);
    Base::log("tesk", TeskTraceLog::SeverityInformation, done);
}

// Each failure once, however often it is met.
void Reloader::tellFailures(const Loading::LoadedRepository& before) const {
    for (const Loading::ServerFailure& failure : loaded_->failures) {
        if (std::ranges::find(before.failures, failure.error, &Loading::ServerFailure::error) ==
            before.failures.end())
            Base::log("tesk", TeskTraceLog::SeverityWarning, failure.toString());
    }
    if (loaded_->failures.empty() && !before.failures.empty())
        Base::log("tesk", TeskTraceLog::SeverityInformation, "All CIM servers respond again");
}

void Reloader::schedule(bool isAnyServerFailing) {
    const std::chrono::steady_clock::time_point now = hooks_.clock();
    if (isAnyServerFailing)
        schedule_.fail(now);
    else
        schedule_.succeed(now, settings_.servers.empty() ? std::chrono::milliseconds(0)
                                                         : settings_.refresh.interval);
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
        settings.adminListen != settings_.adminListen ||
        settings.security.scheme != settings_.security.scheme ||
        settings.security.credentialLifetime != settings_.security.credentialLifetime)
        Base::log("tesk", TeskTraceLog::SeverityWarning,
                  "Changes of [server], [log] and credential_lifetime take effect at the next "
                  "start");
}

}  // namespace Commands
