#pragma once

#include <functional>
#include <iosfwd>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Commands/Serve/Service.h"
#include "ObjectManager/Configuration/Settings.h"

namespace Commands {

/// Reads the configuration, the classes and the password file of a service again. When one of them
/// cannot be read, that is logged, and the service goes on with what it has.
///
/// Thread safety: belongs to the thread of the service.
class Reloader {
  public:
    /// Reads the settings anew; errors in them are written to `messages`.
    /// Errors: TeskBaseException when there are any.
    using ReadSettings = std::function<Configuration::Settings(std::ostream& messages)>;

    /// `service` must live as long as this. `settings` are those with which it runs;
    /// `passwordFile` is the version of the file before the service read it.
    Reloader(Service& service, ReadSettings readSettings, const Configuration::Settings& settings,
             const Base::FileVersion& passwordFile);

    /// Gives the service the new classes and users, and warns of other settings that have changed.
    void reloadAll();

    /// Gives the service the new users if the password file has changed.
    void reloadUsersIfChanged();

  private:
    void readAll(std::ostream& messages);
    void keepPasswordFile(Configuration::Settings& settings) const;
    void warnOfSettingsThatNeedARestart(const Configuration::Settings& settings) const;

    Service& service_;
    ReadSettings readSettings_;
    Configuration::Settings settings_;  // with which the service runs
    Base::FileVersion passwordFile_;
};

}  // namespace Commands
