#include "ObjectManager/Configuration/Endpoint.h"

#include <arpa/inet.h>
#include <charconv>
#include <netinet/in.h>
#include <optional>
#include <system_error>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Configuration {

namespace {

bool isAddress(int family, const std::string& text) {
    in6_addr ignored = {};
    return text.find('\0') == std::string::npos && inet_pton(family, text.c_str(), &ignored) == 1;
}

// The address without brackets; nothing if it is none.
std::optional<std::string> parseAddress(std::string_view text) {
    if (text.starts_with('[') && text.ends_with(']')) {
        std::string inner(text.substr(1, text.size() - 2));
        return isAddress(AF_INET6, inner) ? std::optional(inner) : std::nullopt;
    }
    std::string plain(text);
    return isAddress(AF_INET, plain) ? std::optional(plain) : std::nullopt;
}

std::optional<std::uint16_t> parsePort(std::string_view text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    return error == std::errc() && stop == end ? std::optional(port) : std::nullopt;
}

}  // namespace

std::string Endpoint::toString() const {
    const bool isIPv6 = address.find(':') != std::string::npos;
    return (isIPv6 ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

Endpoint parseEndpoint(std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon != std::string_view::npos) {
        const auto address = parseAddress(text.substr(0, colon));
        const auto port = parsePort(text.substr(colon + 1));
        if (address && port)
            return {.address = *address, .port = *port};
    }
    throw TeskBaseException(
        "Configuration::parseEndpoint",
        TSKString('"' + std::string(text) +
                  "\" is no address with a port, such as \"127.0.0.1:5985\", \"0.0.0.0:5985\" or "
                  "\"[::1]:5985\""),
        CIM_ERR_INVALID_PARAMETER);
}

}  // namespace Configuration
