#pragma once

#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Platform/Http/TSKHTTPOperation.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// The status line and header section of a response. The body is what its maker writes to the
/// stream after them.
///
/// Thread safety: belongs to one thread.
class TESK_PLATFORM_EXPORT TSKHTTPResponse : public TSKHTTPOperation {
  public:
    /// `protocol` as in "HTTP/1.1", `statusCode` three digits, `reason` the reason phrase. Checked
    /// when they are sent.
    TSKHTTPResponse(const TSKString& protocol, const TSKString& statusCode,
                    const TSKString& reason);
    ~TSKHTTPResponse() override;

    [[nodiscard]] const TSKString& getStatusCode() const noexcept { return statusCode_; }
    [[nodiscard]] const TSKString& getReason() const noexcept { return reason_; }

    /// Writes the status line, the header fields in their order and the empty line that ends the
    /// header section (RFC 9112, sections 4 and 5), in one piece. The front end adds the header
    /// field "Date".
    ///
    /// Errors: TeskBaseException with CIM_ERR_INVALID_PARAMETER, before anything is written, when
    /// the protocol is not HTTP/1.x, the status code not three digits, a header field's name no
    /// token, or a header field's value or the reason holds a carriage return, newline or zero
    /// byte. Whatever the stream throws.
    void writeResponseTo(TSKGenericHTTPOStream& stream) const;

  private:
    TSKString statusCode_;
    TSKString reason_;
};
