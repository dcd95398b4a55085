#pragma once

#include "Platform/ProviderFramework/TeskTransactionInfo.h"
#include "Platform/Util/Export.h"

/// A bracket around operations that belong together; a provider hands it out and gets it back with
/// each operation. Providers without transactions use null pointers.
///
/// Thread safety: belongs to one thread.
class TESK_PLATFORM_EXPORT ITeskTransaction {
  public:
    virtual ~ITeskTransaction();

    [[nodiscard]] virtual const TeskTransactionInfo& getInfo() const = 0;
};
