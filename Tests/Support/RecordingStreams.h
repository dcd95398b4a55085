#pragma once

#include <string>

#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Tests/Support/HostCalls.h"

/// A connection whose client sends nothing more.
class EmptyInput : public TSKGenericHTTPIStream {
  public:
    unsigned long read(char* /*buffer*/, unsigned long /*length*/) override { return 0; }
};

/// Keeps what is written to a client at the address 192.0.2.7, port 50000.
class RecordedOutput : public TSKGenericHTTPOStream {
  public:
    void write(const char* data, unsigned long length) override {
        HostCalls::note("TSKGenericHTTPOStream::write");
        text.append(data, length);
        ++writes;
    }
    void getPeerAddressString(TSKString& peerHost, TSKString& peerPort) const override {
        HostCalls::note("TSKGenericHTTPOStream::getPeerAddressString");
        peerHost = "192.0.2.7";
        peerPort = "50000";
    }

    std::string text;
    int writes = 0;
};
