#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "ObjectManager/Http/Refusal.h"

namespace Http {

/// What a request asks for.
///
/// Thread safety: belongs to one thread.
struct RequestTarget {
    /// Begins with `/`, percent-encodings decoded, without query string and fragment. Holds no
    /// control character and no segment `.` or `..`.
    std::string path;

    /// Host and perhaps port of an absolute target, checked as isHostField does; empty for a target
    /// that is a path.
    std::string authority;
};

/// Reads a request target (RFC 9112, section 3.2): a path, or an absolute URI with the scheme http.
/// What else there is, and every target from which a provider could take a wrong path, is refused
/// with 400: encodings that are malformed or hide a `/` or a control character, segments `.` and
/// `..` whether encoded or not, bytes that no URI has.
[[nodiscard]] std::variant<RequestTarget, Refusal> parseRequestTarget(std::string_view target);

}  // namespace Http
