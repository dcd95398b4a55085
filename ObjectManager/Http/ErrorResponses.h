#pragma once

#include <string>

#include "ObjectManager/Http/Response.h"

namespace Http {

/// Why the server responds to a request without a provider.
///
/// Thread safety: belongs to one thread.
struct Error {
    unsigned status = 400;  ///< of the response, RFC 9110 section 15
    std::string text;       ///< one sentence for the person at the client
};

/// The response for `error`, with its text as the body; `withoutBody` as Response::make.
/// Errors: std::bad_alloc.
[[nodiscard]] Response errorResponse(const Error& error, bool withoutBody);

/// The response to a client that is not authenticated: 401 with a request for a user name and a
/// password (RFC 7617), and nothing else.
/// Errors: std::bad_alloc.
[[nodiscard]] Response authenticationChallenge();

}  // namespace Http
