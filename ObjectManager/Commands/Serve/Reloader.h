#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <thread>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Security/UserTable.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Commands {

/// What a Reloader calls. What the thread calls that reads the classes, `readSettings` and `wake`,
/// is copied for it, and must be usable as long as the process runs.
struct ReloaderHooks {
    /// Reads the settings anew; errors in them are written to `messages`.
    /// Errors: TeskBaseException when there are any.
    std::function<Configuration::Settings(std::ostream& messages)> readSettings;

    /// Gives the service new classes and, if there are any, new users.
    /// Errors: std::bad_alloc; neither is replaced then.
    std::function<void(const TSKSmrPtr<Repository::ClassRepository>& classes,
                       std::optional<Security::UserTable> users)>
        replace;

    /// Gives the service new users. Errors: as replace.
    std::function<void(Security::UserTable users)> setUsers;

    /// Has goOn() called soon. Called by the thread that reads the classes.
    std::function<void()> wake;

    std::function<std::chrono::steady_clock::time_point()> clock = std::chrono::steady_clock::now;
};

/// Reads the configuration, the classes and the password file of a service again. When one of them
/// cannot be read, that is logged, and the service goes on with what it has.
///
/// Configuration and classes are read by a thread of its own, since large models take seconds: a
/// user who is removed meanwhile must not stay valid for so long.
///
/// No function throws. Thread safety: belongs to the thread of the service.
class Reloader {
  public:
    /// `settings` are those with which the service runs; `passwordFile` is the version of the file
    /// before the service read it.
    Reloader(ReloaderHooks hooks, const Configuration::Settings& settings,
             const Base::FileVersion& passwordFile);
    Reloader(const Reloader&) = delete;
    Reloader& operator=(const Reloader&) = delete;
    /// Does not wait for a reading that runs: its thread goes on, and its result is dropped. End
    /// the process without running its exit handlers then, see isReading().
    ~Reloader();

    /// Begins to read everything again. If a reading runs already, another one follows it: what it
    /// has read may be older than this call.
    void reload() noexcept;

    /// Gives the service what was read, and the users of the password file if it has changed. A
    /// file that cannot be read is tried again by each call, and that it fails is logged once a
    /// minute. To be called about once a second.
    void goOn() noexcept;

    [[nodiscard]] bool isReading() const noexcept { return reading_ != nullptr; }

  private:
    struct Reading;

    void beginReading() noexcept;
    void finishReading() noexcept;
    void use(Reading& reading);
    void reloadUsersIfChanged() noexcept;
    void keepPasswordFile(Configuration::Settings& settings) const;
    void warnOfSettingsThatNeedARestart(const Configuration::Settings& settings) const;

    const ReloaderHooks hooks_;
    Configuration::Settings settings_;  // with which the service runs
    Base::FileVersion passwordFile_;    // that the service has the users of

    std::shared_ptr<Reading> reading_;  // null when none runs
    std::thread thread_;                // of reading_
    bool isAskedAgain_ = false;         // while reading_ ran

    // Of the last failure to read the password file that was logged.
    Base::FileVersion failedPasswordFile_;
    std::optional<std::chrono::steady_clock::time_point> failedAt_;
};

}  // namespace Commands
