#pragma once

#include <cstdint>
#include <string>

namespace Http {

/// Where a Server listens.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct ListenAddress {
    /// An IPv4 or IPv6 address. "0.0.0.0" is every IPv4 address of the machine, "::" every IPv6 and
    /// IPv4 address. Only this machine by default: who wants others to come says so.
    std::string address = "127.0.0.1";

    /// 0 takes a port that is free. By default the one that is registered for WS-Management.
    std::uint16_t port = 5985;

    friend bool operator==(const ListenAddress&, const ListenAddress&) = default;
};

}  // namespace Http
