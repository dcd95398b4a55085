#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// What a client receives: a provider writes its whole response here: status line, header
/// section and body.
///
/// Thread safety: belongs to one thread.
class TESK_PLATFORM_EXPORT TSKGenericHTTPOStream {
  public:
    virtual ~TSKGenericHTTPOStream();

    /// Appends `length` bytes to the response.
    /// Errors: TeskBaseException when the connection fails, std::bad_alloc.
    virtual void write(const char* data, unsigned long length) = 0;

    /// The address and the port of the connected client as text. An IPv6 address stands in
    /// brackets, so that it can be a part of a URI as it is.
    virtual void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const = 0;
};
