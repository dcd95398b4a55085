#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

namespace urma::security {

/// Proof that a caller was authenticated.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT ISecurityToken {
  public:
    virtual ~ISecurityToken();

    /// The name of the authenticated user.
    [[nodiscard]] virtual TSKString getUserName() const = 0;
};

}  // namespace urma::security
