#pragma once

#include <functional>
#include <iosfwd>

#include "ObjectManager/Commands/FileStamp.h"
#include "ObjectManager/Commands/Service.h"
#include "ObjectManager/Configuration/Settings.h"

namespace Commands {

/// Reads again what a service was started with. What cannot be read is logged, and the service goes
/// on with what it has.
///
/// Thread safety: belongs to the thread of the service.
class Reloader {
  public:
    /// Reads the settings as they are by now, and writes what is wrong with them to `faults`.
    /// Errors: TeskBaseException when there is something.
    using ReadSettings = std::function<Configuration::Settings(std::ostream& faults)>;

    /// `settings` are those with which `service` runs, which must live as long as this;
    /// `passwordFile` is what the file was before the service has read it.
    Reloader(Service& service, ReadSettings readSettings, const Configuration::Settings& settings,
             const FileStamp& passwordFile);

    /// Takes over the classes and the users, and warns of other settings that have changed.
    void reloadAll();

    /// Takes over the users when the password file is another one than it was.
    void reloadUsersIfChanged();

  private:
    void readAll(std::ostream& faults);
    void keepPasswordFile(Configuration::Settings& settings) const;
    void warnOfWhatNeedsAStart(const Configuration::Settings& settings) const;

    Service& service_;
    ReadSettings readSettings_;
    Configuration::Settings settings_;  // with which the service runs
    FileStamp passwordFile_;
};

}  // namespace Commands
