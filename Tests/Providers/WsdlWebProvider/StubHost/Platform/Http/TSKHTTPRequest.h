#pragma once

#include "Platform/Util/TSKString.h"

class TSKHTTPRequest {
  public:
    const TSKString& getUri() const;
    const TSKString* getHost() const;
    const TSKString& getProtocol() const;
    void setContentLength(unsigned long length);
};
