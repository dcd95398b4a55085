#pragma once

#include "Platform/ProviderFramework/ITeskInstallation.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"

/// Tells providers about the installation that they run in.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT URMAConfigManager {
  public:
    /// Turns a path relative to the installation directory into an absolute one, in place. Leaves
    /// an absolute path as it is.
    /// Errors: TeskBaseException with CIM_ERR_FAILED where no installation is known.
    static void cvtToAbsolutePath(TSKString& path);

    /// For the object manager: installs `installation`, null for none. Returns the one before.
    static TSKSmrPtr<ITeskInstallation> setInstallation(TSKSmrPtr<ITeskInstallation> installation);
};
