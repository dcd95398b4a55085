#pragma once

#include "Platform/Util/TSKString.h"

class TSKGenericHTTPOStream {
  public:
    virtual void write(const char* data, unsigned long length) = 0;
    virtual void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const = 0;
};
