#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// Where the object manager is installed. Install one with URMAConfigManager::setInstallation.
///
/// Thread safety: implementations must be usable by several threads at once.
class TESK_PLATFORM_EXPORT ITeskInstallation {
  public:
    virtual ~ITeskInstallation();

    /// The absolute path of the directory that holds "providers" and the like, without a `/` at its
    /// end.
    [[nodiscard]] virtual TSKString getInstallationDirectory() const = 0;
};
