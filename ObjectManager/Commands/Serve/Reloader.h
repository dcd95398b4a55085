#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <thread>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Commands/Serve/RefreshSchedule.h"
#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Security/UserTable.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Commands {

/// A random number from 0 to 1.
[[nodiscard]] double randomFraction();

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

    /// Called after each reading of everything with whether it is used. May be empty; must not
    /// throw.
    std::function<void(bool isDone)> onReload = nullptr;

    /// Called when servers have been asked again, with the number of failures; for a reading that
    /// is not used that is 1. As onReload.
    std::function<void(std::size_t failures)> onRefresh = nullptr;

    /// Has goOn() called soon. Called by the thread that reads the classes.
    std::function<void()> wake;

    std::function<std::chrono::steady_clock::time_point()> clock = std::chrono::steady_clock::now;

    /// A number from 0 to 1, by which the service asks servers that have failed a little earlier.
    std::function<double()> random = &randomFraction;
};

/// Reads the configuration, the classes and the password file of a service again. When one of them
/// cannot be read, that is logged, and the service goes on with what it has. Also asks the CIM
/// servers again that classes come from, as RefreshSchedule says.
///
/// Configuration and classes are read by a thread of its own, since large models take seconds: a
/// user who is removed meanwhile must not stay valid for so long.
///
/// No function throws. Thread safety: belongs to the thread of the service.
class Reloader {
  public:
    /// `settings` and `loaded` are those with which the service runs; `passwordFile` is the version
    /// of the file before the service read it.
    Reloader(ReloaderHooks hooks, const Configuration::Settings& settings,
             Loading::LoadedRepository loaded, const Base::FileVersion& passwordFile);
    Reloader(const Reloader&) = delete;
    Reloader& operator=(const Reloader&) = delete;
    /// Does not wait for a reading that runs: its thread goes on, and its result is dropped. End
    /// the process without running its exit handlers then, see isReading().
    ~Reloader();

    /// Begins to read everything again. If a reading runs already, another one follows it: what it
    /// has read may be older than this call. If servers are being asked, that ends.
    void reload() noexcept;

    /// Asks servers when it is time. Gives the service what was read, and the users of the password
    /// file if it has changed. A file that cannot be read is tried again by each call, and that it
    /// fails is logged once a minute. To be called about once a second.
    void goOn() noexcept;

    [[nodiscard]] bool isReading() const noexcept { return reading_ != nullptr; }

  private:
    struct Reading;

    enum class What : std::uint8_t {
        kEverything,  // configuration, MOF files, servers
        kServers,
    };

    void beginReading(What what) noexcept;
    void finishReading() noexcept;
    void use(Reading& reading);
    void tellEnd(What what, bool isDone) const;
    void useSettings(Configuration::Settings& settings) noexcept;
    void refresh(Reading& reading);
    void tellFailures(const Loading::LoadedRepository& before) const;
    void schedule(bool isAnyServerFailing);
    void reloadUsersIfChanged() noexcept;
    void keepPasswordFile(Configuration::Settings& settings) const;
    void warnOfSettingsThatNeedARestart(const Configuration::Settings& settings) const;

    const ReloaderHooks hooks_;
    Configuration::Settings settings_;  // with which the service runs
    Base::FileVersion passwordFile_;    // that the service has the users of

    // That the service has. Shared with the thread of reading_.
    std::shared_ptr<const Loading::LoadedRepository> loaded_;
    RefreshSchedule schedule_;

    std::shared_ptr<Reading> reading_;  // null when none runs
    std::thread thread_;                // of reading_
    bool isAskedAgain_ = false;         // while reading_ ran

    // Of the last failure to read the password file that was logged.
    Base::FileVersion failedPasswordFile_;
    std::optional<std::chrono::steady_clock::time_point> failedAt_;
};

}  // namespace Commands
