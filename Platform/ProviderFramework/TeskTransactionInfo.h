#pragma once

#include "Platform/Util/TSKString.h"

/// What a transaction is started for.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct TeskTransactionInfo {
    TSKString nameSpace;  ///< the CIM namespace that it works in
    TSKString userName;   ///< the authenticated user, empty for the object manager itself
};
