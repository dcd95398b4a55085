#pragma once

#include <string_view>
#include <variant>

#include "ObjectManager/Http/Refusal.h"
#include "ObjectManager/Http/RequestLimits.h"
#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// A request without its body, checked.
///
/// Thread safety: belongs to one thread.
struct RequestHead {
    /// Its uri is RequestTarget::path. It has exactly one field "Host", which isHostField accepts;
    /// in HTTP/1.0 it may have none.
    TSKHTTPRequest request;

    bool announcesBody = false;  ///< the client says that it sends a body
};

/// Reads the head of a request, with the empty line at its end (RFC 9112). Whatever the bytes are,
/// they are read or refused:
///
/// - 400 for what is malformed or ambiguous: lines, method, target (see parseRequestTarget), header
///   fields, a field continued on a second line, contradicting lengths, a transfer coding whose
///   end nobody can tell; a Host field that is missing, several or malformed.
/// - 431 for more header fields than `limits` allows. The other limits are RequestHeadScanner's.
/// - 501 for the methods CONNECT and TRACE, which no resource of this server can have. Whether a
///   resource has another method is for its provider to say.
/// - 505 for other versions of HTTP than 1.0 and 1.1.
///
/// The authority of an absolute target takes the place of the Host field (RFC 9112, 3.2.2).
[[nodiscard]] std::variant<RequestHead, Refusal> parseRequestHead(std::string_view head,
                                                                  const RequestLimits& limits);

}  // namespace Http
