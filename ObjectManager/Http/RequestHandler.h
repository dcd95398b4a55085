#pragma once

#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// Answers the requests for pages of the service's own. It is asked before the providers.
///
/// Thread safety: implementations must be usable by several threads at once.
class RequestHandler {
  public:
    RequestHandler() = default;
    RequestHandler(const RequestHandler&) = delete;
    RequestHandler& operator=(const RequestHandler&) = delete;
    virtual ~RequestHandler();

    /// Writes the whole response, head and body, to `ostr` and returns true, or returns false
    /// without having written for a request that is not its own. `istr` is at its end.
    /// Errors: what it throws is answered as what a provider throws; see TSKHTTPException.
    [[nodiscard]] virtual bool handle(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                                      TSKGenericHTTPOStream& ostr) = 0;
};

}  // namespace Http
