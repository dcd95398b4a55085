#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// Fills `version` with the version of the platform that the provider runs on, such as "1.2.3".
/// Returns whether it is known.
///
/// Thread safety: may be called by several threads at once.
TESK_PLATFORM_EXPORT bool TeskProviderGetDllVersion(TSKString& version);
