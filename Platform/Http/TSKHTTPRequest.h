#pragma once

#include "Platform/Http/TSKHTTPOperation.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// A request as the front end hands it to a provider: checked, and its path decoded.
///
/// Thread safety: belongs to one thread.
class TESK_PLATFORM_EXPORT TSKHTTPRequest : public TSKHTTPOperation {
  public:
    /// `uri` is the path that is asked for, without a query string; `protocol` as in "HTTP/1.1".
    TSKHTTPRequest(const TSKString& method, const TSKString& uri, const TSKString& protocol);
    ~TSKHTTPRequest() override;

    [[nodiscard]] const TSKString& getMethod() const noexcept { return method_; }
    [[nodiscard]] const TSKString& getUri() const noexcept { return uri_; }

    /// The value of the header field "Host" as it was sent, null when there was none. Valid until a
    /// header field is set.
    [[nodiscard]] const TSKString* getHost() const noexcept;

  private:
    TSKString method_;
    TSKString uri_;
};
