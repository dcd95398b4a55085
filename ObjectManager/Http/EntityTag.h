#pragma once

#include <string>
#include <string_view>

#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// The strong entity tag (RFC 9110, section 8.8.3) of a body: the same for the same bytes, also
/// after a restart and on another machine.
/// Errors: std::bad_alloc.
[[nodiscard]] std::string entityTag(std::string_view body);

/// What a request is responded with because of its fields If-Match and If-None-Match.
enum class Precondition {
    kMet,          ///< the response that it would get without these fields
    kNotModified,  ///< 304: the client has the body already
    kFailed,       ///< 412: the body is none that the client expects
};

/// Evaluates the conditions of a request with the method GET or HEAD whose response has the status
/// 200 and the entity tag `tag` (RFC 9110, section 13.2.2). Conditions on dates are ignored, since
/// responses have no modification date.
[[nodiscard]] Precondition evaluatePreconditions(const TSKHTTPRequest& request,
                                                 std::string_view tag);

}  // namespace Http
