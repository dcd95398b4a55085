#pragma once

#include <boost/asio/ip/address.hpp>
#include <string>
#include <string_view>
#include <variant>

#include "ObjectManager/Http/ErrorResponses.h"

namespace Http {

/// What a request asks for.
///
/// Thread safety: belongs to one thread.
struct RequestTarget {
    /// Begins with `/`, percent-encodings decoded, without query string. Contains no control
    /// character and no segment `.` or `..`.
    std::string path;

    /// Host and optional port of an absolute target, as isHostWithPort accepts them; empty for a
    /// target that is a path.
    std::string authority;
};

/// Reads a request target (RFC 9112, section 3.2): a path, or an absolute URI with the scheme http,
/// or https if the client uses TLS: nobody else may be given what is for them (RFC 9110, section
/// 7.4).
/// Other forms get an error with status 400, and so does every target that could lead a provider to
/// a wrong path: a fragment, which clients keep for themselves, percent-encodings that are
/// malformed or stand for a `/` or a control character, segments `.` and `..` (encoded or not),
/// bytes that are not allowed in a URI.
[[nodiscard]] std::variant<RequestTarget, Error> parseRequestTarget(std::string_view target,
                                                                    bool usesTls = false);

/// Whether `text` is a host with an optional port, as the header field "Host" requires (RFC 9110,
/// section 7.2): a name, an IPv4 address or an IPv6 address in brackets (RFC 3986, section 3.2.2),
/// then an optional colon with an optional port of at most 65535. Stricter than the RFC in three
/// points: a host must not be empty, since no http URI has an empty one; address forms of the
/// future and IPv6 zones are refused; and so is an ampersand in a name, which would break the XML
/// documents that contain the host.
[[nodiscard]] bool isHostWithPort(std::string_view text);

/// `address` as the host of a URI: an IPv6 address in brackets and without its zone, an IPv4
/// address that is mapped into IPv6 as IPv4.
[[nodiscard]] std::string toUriHost(const boost::asio::ip::address& address);

}  // namespace Http
