#pragma once

#include <vector>

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// What requests and responses have in common: a protocol version and header fields (RFC 9110,
/// section 5). The header fields keep the order in which they were first set; their names are
/// compared without regard to case.
///
/// Thread safety: belongs to one thread.
class TESK_PLATFORM_EXPORT TSKHTTPOperation {
  public:
    struct HeaderField {
        TSKString name;
        TSKString value;
    };

    virtual ~TSKHTTPOperation();

    /// The protocol version as it is written in a message, such as "HTTP/1.1".
    [[nodiscard]] const TSKString& getProtocol() const noexcept { return protocol_; }

    /// Sets a header field. With `keepExisting` false it takes the place of all header fields of
    /// that name, else it is added after them. The texts are taken as they are and checked when
    /// they are sent.
    void setHeaderField(const TSKString& name, const TSKString& value, bool keepExisting);

    /// The value of the first header field of that name, null when there is none. Valid until a
    /// header field is set.
    [[nodiscard]] const TSKString* getHeaderField(const TSKString& name) const noexcept;

    [[nodiscard]] const std::vector<HeaderField>& getHeaderFields() const noexcept {
        return fields_;
    }

    /// Sets the header field "Content-Length", in bytes.
    void setContentLength(unsigned long length);

    /// The number of bytes in the header field "Content-Length"; 0 without one, or if it is no
    /// number.
    [[nodiscard]] unsigned long getContentLength() const noexcept;

    /// Sets the header field "Content-Type".
    void setContentType(const TSKString& type);

  protected:
    explicit TSKHTTPOperation(const TSKString& protocol) : protocol_(protocol) {}
    TSKHTTPOperation(const TSKHTTPOperation&) = default;
    TSKHTTPOperation& operator=(const TSKHTTPOperation&) = default;

  private:
    TSKString protocol_;
    std::vector<HeaderField> fields_;
};
