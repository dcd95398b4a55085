#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Configuration {

/// Where the object manager waits for connections.
struct Endpoint {
    std::string address;     ///< of IPv4, or of IPv6 without brackets
    std::uint16_t port = 0;  ///< 0 lets the system pick one

    /// As it is written: an address of IPv6 stands in brackets.
    [[nodiscard]] std::string toString() const;

    friend bool operator==(const Endpoint&, const Endpoint&) = default;
};

/// Reads "ADDRESS:PORT". The address is one in digits: a name would stand for several.
/// Errors: TeskBaseException, whose message says what is right.
[[nodiscard]] Endpoint parseEndpoint(std::string_view text);

}  // namespace Configuration
