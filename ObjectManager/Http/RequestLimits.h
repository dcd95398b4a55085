#pragma once

#include <cstddef>

namespace Http {

/// How large the head of a request may be.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct RequestLimits {
    /// Bytes of the whole head with the empty line at its end. A token of Kerberos in an
    /// Authorization field takes up to 12 KiB; more is answered 431.
    std::size_t mostHeadBytes = 16UL * 1024;

    /// Bytes of the request line without its end. RFC 9112, section 3, recommends 8,000 at least;
    /// more is answered 414.
    std::size_t mostRequestLineBytes = 8UL * 1024;

    /// Header fields. Clients send about ten; more is answered 431, since what looks a field up
    /// goes through all of them.
    std::size_t mostFields = 100;
};

}  // namespace Http
