#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Host {

/// Where documents say that the service is: what a provider writes as the address of the service,
/// whatever the client has called it.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct PublishedAddress {
    std::string host;      ///< with an optional port, as in the header field Host
    bool isHttps = false;  ///< else http

    /// "https://cim.example.org:5986".
    [[nodiscard]] std::string toString() const { return (isHttps ? "https://" : "http://") + host; }

    friend bool operator==(const PublishedAddress&, const PublishedAddress&) = default;
};

/// What turns the address in a WSDL document into one of https, see findHttpsInsertion().
inline constexpr std::string_view kHttpsInsertion = "s";

/// Where kHttpsInsertion must be inserted into `document`, so that the address of the service
/// begins with "https://": providers know nothing of TLS and write "http://". Nothing for a
/// document that is not WSDL, or has an address of another form.
[[nodiscard]] std::optional<std::size_t> findHttpsInsertion(std::string_view document) noexcept;

}  // namespace Host
