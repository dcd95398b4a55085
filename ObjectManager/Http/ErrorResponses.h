#pragma once

#include <string>

#include "ObjectManager/Http/Response.h"

namespace Http {

/// Why the server responds to a request without a provider.
///
/// Thread safety: belongs to one thread.
struct Error {
    unsigned status = 400;   ///< of the response, RFC 9110 section 15
    std::string text;        ///< one sentence for the person at the client
    std::string allow = {};  ///< for 405: the methods that are allowed, for the field Allow
};

/// Why a client gets 503 when there is no room for its response (see ResponseMemory).
inline constexpr const char* kNoRoom =
    "The server has no memory for the response. Try again later.";

/// The response for `error`, with its text as the body unless `withoutBody`. A client that gets 503
/// is told to try again after some seconds.
/// Errors: std::bad_alloc.
[[nodiscard]] Response errorResponse(const Error& error, bool withoutBody);

/// 304, for a client that has the body with the entity tag `tag` already.
/// Errors: std::bad_alloc.
[[nodiscard]] Response notModifiedResponse(const std::string& tag);

/// 204, for a client that asks for the methods that are allowed.
/// Errors: std::bad_alloc.
[[nodiscard]] Response optionsResponse(const std::string& allow);

/// The response to a client that is not authenticated: 401 with a request for a user name and a
/// password (RFC 7617), and nothing else.
/// Errors: std::bad_alloc.
[[nodiscard]] Response authenticationChallenge();

}  // namespace Http
