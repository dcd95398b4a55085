#pragma once

#include <boost/asio/ip/address.hpp>
#include <string>

namespace Http {

/// An address as it stands in a URI: IPv6 in brackets and without its zone, an IPv4 address that is
/// mapped into IPv6 as IPv4.
[[nodiscard]] std::string toUriHost(const boost::asio::ip::address& address);

}  // namespace Http
