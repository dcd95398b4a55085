#pragma once

#include "Platform/Util/Export.h"

/// What a client sends after the header section of its request.
///
/// Thread safety: belongs to one thread.
class TESK_PLATFORM_EXPORT TSKGenericHTTPIStream {
  public:
    virtual ~TSKGenericHTTPIStream();

    /// Reads at most `length` bytes into `buffer`. Returns how many; 0 at the end.
    /// Errors: TeskBaseException when the connection fails.
    virtual unsigned long read(char* buffer, unsigned long length) = 0;
};
