#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TeskBaseException.h"

/// A request that a provider refuses. Thrown out of a provider's processHTTPRequest, it becomes the
/// response of the front end; its code says which.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT TSKHTTPException : public TeskBaseException {
  public:
    /// The code of a caller that could not be authenticated: the front end responds with 401 and a
    /// challenge. Every other code becomes a 500.
    static constexpr int kAuthenticationFailed = 4;

    TSKHTTPException(const TSKString& where, const TSKString& message, int code);
    TSKHTTPException(const TSKHTTPException&) noexcept = default;
    TSKHTTPException& operator=(const TSKHTTPException&) noexcept = default;
    ~TSKHTTPException() override;
};
