#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <vector>

#include "Platform/Http/TSKHTTPRequest.h"

// Which client a request comes from. All functions may be called by several threads at once.

namespace Http {

/// An IP address without port and zone. An IPv4 address and the same one mapped into IPv6 are
/// equal: a socket that accepts both protocols reports the latter.
///
/// Thread safety: immutable, may be used by several threads at once.
class ClientAddress {
  public:
    /// In network byte order; an IPv4 address is mapped into IPv6.
    using Bytes = std::array<unsigned char, 16>;

    /// The unspecified address "::".
    ClientAddress() noexcept = default;
    explicit ClientAddress(const Bytes& bytes) noexcept : bytes_(bytes) {}

    /// The address in a socket's address; the unspecified one for another family than IPv4 and
    /// IPv6.
    [[nodiscard]] static ClientAddress of(const sockaddr& socketAddress) noexcept;

    /// Reads "192.0.2.1" or "2001:db8::1"; nothing for other texts.
    [[nodiscard]] static std::optional<ClientAddress> parse(std::string_view text) noexcept;

    [[nodiscard]] const Bytes& bytes() const noexcept { return bytes_; }
    [[nodiscard]] bool isIPv4() const noexcept;

    /// "192.0.2.1" or "2001:db8::1".
    [[nodiscard]] std::string toString() const;

    friend bool operator==(const ClientAddress&, const ClientAddress&) = default;

  private:
    Bytes bytes_ = {};
};

/// What a limit for each client counts by: the address of an IPv4 client, the /64 network of an
/// IPv6 client, who can use any address of it. To be used as the key of a std::map: clients choose
/// their addresses, and could choose those that collide in a hash table.
///
/// Thread safety: immutable, may be used by several threads at once.
struct ClientKey {
    ClientAddress::Bytes bytes = {};

    [[nodiscard]] static ClientKey of(const ClientAddress& address) noexcept;

    friend bool operator==(const ClientKey&, const ClientKey&) = default;
    friend bool operator<(const ClientKey& left, const ClientKey& right) noexcept {
        return std::ranges::lexicographical_compare(left.bytes, right.bytes);
    }
};

/// A network of IP addresses.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct Network {
    ClientAddress first;          ///< all bits after the prefix are zero
    unsigned prefixLength = 128;  ///< in bits of IPv6; 96 more than in those of IPv4

    /// Reads "10.0.0.0/8", "fd00::/8" or a single address.
    /// Errors: TeskBaseException that says what is right.
    [[nodiscard]] static Network parse(std::string_view text);

    [[nodiscard]] bool contains(const ClientAddress& address) const noexcept;

    /// "10.0.0.0/8" or "fd00::/8".
    [[nodiscard]] std::string toString() const;

    friend bool operator==(const Network&, const Network&) = default;
};

/// Whether one of the networks contains the address.
[[nodiscard]] bool isIn(const std::vector<Network>& networks,
                        const ClientAddress& address) noexcept;

/// The client that sent `request` over a connection from `peer`. That is the peer, unless it is one
/// of the trusted proxies. Then it is the last address in the header fields "X-Forwarded-For" that
/// is not one of them: each proxy adds the address from which it got the request, and what stands
/// before the first proxy's addition is the client's own invention. An entry that is not an address
/// ends the search; the proxy that added it counts as the client then.
[[nodiscard]] ClientAddress clientOf(const TSKHTTPRequest& request, const ClientAddress& peer,
                                     const std::vector<Network>& trustedProxies) noexcept;

}  // namespace Http
