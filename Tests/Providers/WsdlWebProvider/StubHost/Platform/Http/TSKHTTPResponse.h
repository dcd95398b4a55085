#pragma once

#include "Platform/Http/TSKGenericHTTPOStream.h"

class TSKHTTPResponse {
  public:
    TSKHTTPResponse(const TSKString& protocol, const TSKString& statusCode,
                    const TSKString& reason);

    void setHeaderField(const TSKString& name, const TSKString& value, bool keepExisting);
    void setContentLength(unsigned long length);
    void setContentType(const TSKString& type);
    void writeResponseTo(TSKGenericHTTPOStream& stream) const;
};
