#include "Platform/Http/TSKHTTPRequest.h"

TSKHTTPRequest::TSKHTTPRequest(const TSKString& method, const TSKString& uri,
                               const TSKString& protocol)
    : TSKHTTPOperation(protocol), method_(method), uri_(uri) {}

TSKHTTPRequest::~TSKHTTPRequest() = default;

const TSKString* TSKHTTPRequest::getHost() const noexcept {
    return getHeaderField("Host");
}
