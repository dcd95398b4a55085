#pragma once

#include "Platform/Util/TSKString.h"

/// A provider that failed and is left out by the plug-in manager.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct TeskProviderFailure {
    TSKString file;    ///< the library, or the directory when that could not be read
    TSKString reason;  ///< what failed and why, in words for an operator
};
