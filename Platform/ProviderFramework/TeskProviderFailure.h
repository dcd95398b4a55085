#pragma once

#include "Platform/Util/TSKString.h"

/// A provider that the plug-in manager had to do without.
struct TeskProviderFailure {
    TSKString file;    ///< the library, or the folder when that could not be read
    TSKString reason;  ///< what failed and why, in words for an operator
};
