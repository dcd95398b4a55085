#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TeskBaseException.h"

/// A request that a provider refuses. Thrown out of a provider's processHTTPRequest, it is answered
/// by the front end: its code says how.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT TSKHTTPException : public TeskBaseException {
  public:
    /// The code of a caller who could not be authenticated: the front end answers 401 with a
    /// challenge. Every other code is answered 500.
    static constexpr int kAuthenticationFailed = 4;

    TSKHTTPException(const TSKString& where, const TSKString& message, int code);
    TSKHTTPException(const TSKHTTPException&) noexcept = default;
    TSKHTTPException& operator=(const TSKHTTPException&) noexcept = default;
    ~TSKHTTPException() override;
};
