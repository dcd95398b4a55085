#include "ObjectManager/Http/ClientAddress.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <cstring>
#include <netinet/in.h>
#include <system_error>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Http {

namespace {

constexpr ClientAddress::Bytes kMapped = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0, 0};
constexpr std::size_t kMappedLength = 12;
constexpr unsigned kMappedBits = 96;
constexpr unsigned kAllBits = 128;

ClientAddress mapped(const in_addr& address) noexcept {
    ClientAddress::Bytes bytes = kMapped;
    std::memcpy(bytes.data() + kMappedLength, &address, sizeof address);
    return ClientAddress(bytes);
}

ClientAddress plain(const in6_addr& address) noexcept {
    ClientAddress::Bytes bytes = {};
    std::memcpy(bytes.data(), &address, sizeof address);
    return ClientAddress(bytes);
}

// The address with zeros in place of all bits after the first ones.
ClientAddress::Bytes prefixOf(const ClientAddress& address, unsigned bits) noexcept {
    ClientAddress::Bytes bytes = address.bytes();
    for (unsigned index = 0; index < bytes.size(); ++index) {
        const unsigned kept = std::clamp(bits, 8 * index, 8 * index + 8) - 8 * index;
        bytes[index] &= static_cast<unsigned char>(0xFF00U >> kept);
    }
    return bytes;
}

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Http::Network", TSKString(message), CIM_ERR_INVALID_PARAMETER);
}

std::optional<unsigned> parseNumber(std::string_view text) noexcept {
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && Base::isSpaceOrTab(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && Base::isSpaceOrTab(text.back()))
        text.remove_suffix(1);
    return text;
}

// An entry of X-Forwarded-For: an address, to which some proxies add the port. IPv6 may stand in
// brackets, and does so with a port.
std::optional<ClientAddress> parseEntry(std::string_view entry) noexcept {
    std::string_view address = entry;
    std::string_view rest;
    if (entry.starts_with('[')) {
        const std::size_t end = std::min(entry.find(']'), entry.size() - 1);
        address = entry.substr(1, end - 1);
        rest = entry.substr(end + 1);
        if (entry[end] != ']' || address.find(':') == std::string_view::npos)
            return std::nullopt;
    } else if (std::ranges::count(entry, ':') == 1) {
        address = entry.substr(0, entry.find(':'));
        rest = entry.substr(address.size());
    }
    if (!rest.empty() && (rest.front() != ':' || !parseNumber(rest.substr(1))))
        return std::nullopt;
    return ClientAddress::parse(address);
}

// Goes through the entries of the field from the last one to the first, while they are trusted.
// Returns whether the search goes on in the field before.
bool searchField(std::string_view value, const std::vector<Network>& trustedProxies,
                 ClientAddress& client) noexcept {
    for (;;) {
        const std::size_t comma = value.rfind(',');
        const bool isFirst = comma == std::string_view::npos;
        const std::string_view entry = trimmed(isFirst ? value : value.substr(comma + 1));
        // RFC 9110, section 5.6.1: empty elements of a list do not count.
        if (!entry.empty()) {
            const std::optional<ClientAddress> address = parseEntry(entry);
            if (!address)
                return false;
            client = *address;
            if (!isIn(trustedProxies, client))
                return false;
        }
        if (isFirst)
            return true;
        value = value.substr(0, comma);
    }
}

}  // namespace

ClientAddress ClientAddress::of(const sockaddr& socketAddress) noexcept {
    if (socketAddress.sa_family == AF_INET) {
        sockaddr_in address = {};
        std::memcpy(&address, &socketAddress, sizeof address);
        return mapped(address.sin_addr);
    }
    if (socketAddress.sa_family == AF_INET6) {
        sockaddr_in6 address = {};
        std::memcpy(&address, &socketAddress, sizeof address);
        return plain(address.sin6_addr);
    }
    return {};
}

std::optional<ClientAddress> ClientAddress::parse(std::string_view text) noexcept {
    char terminated[INET6_ADDRSTRLEN] = {};
    if (text.size() >= sizeof terminated || text.find('\0') != std::string_view::npos)
        return std::nullopt;
    text.copy(terminated, text.size());
    in_addr ipv4 = {};
    if (inet_pton(AF_INET, terminated, &ipv4) == 1)
        return mapped(ipv4);
    in6_addr ipv6 = {};
    if (inet_pton(AF_INET6, terminated, &ipv6) == 1)
        return plain(ipv6);
    return std::nullopt;
}

bool ClientAddress::isIPv4() const noexcept {
    return std::equal(kMapped.begin(), kMapped.begin() + kMappedLength, bytes_.begin());
}

std::string ClientAddress::toString() const {
    char text[INET6_ADDRSTRLEN] = {};
    if (isIPv4())
        inet_ntop(AF_INET, bytes_.data() + kMappedLength, text, sizeof text);
    else
        inet_ntop(AF_INET6, bytes_.data(), text, sizeof text);
    return text;
}

ClientKey ClientKey::of(const ClientAddress& address) noexcept {
    constexpr unsigned kNetworkBits = 64;
    return {.bytes = prefixOf(address, address.isIPv4() ? kAllBits : kNetworkBits)};
}

Network Network::parse(std::string_view text) {
    const std::size_t slash = std::min(text.find('/'), text.size());
    const std::optional<ClientAddress> first = ClientAddress::parse(text.substr(0, slash));
    const bool isIPv4 = text.substr(0, slash).find(':') == std::string_view::npos;
    const unsigned missingBits = isIPv4 ? kMappedBits : 0;
    const std::optional<unsigned> bits = slash == text.size()
                                             ? std::optional(kAllBits - missingBits)
                                             : parseNumber(text.substr(slash + 1));
    if (!first || !bits || *bits > kAllBits - missingBits) {
        fail(Base::quoted(text) +
             R"( is not a network or an address, such as "10.0.0.0/8", "fd00::/8" or "::1")");
    }
    const Network network = {.first = ClientAddress(prefixOf(*first, *bits + missingBits)),
                             .prefixLength = *bits + missingBits};
    if (network.first != *first) {
        fail(Base::quoted(text) + " is not the first address of a network; the network is " +
             Base::quoted(network.toString()));
    }
    return network;
}

bool Network::contains(const ClientAddress& address) const noexcept {
    return prefixOf(address, prefixLength) == first.bytes();
}

std::string Network::toString() const {
    const unsigned bits = first.isIPv4() ? prefixLength - kMappedBits : prefixLength;
    return first.toString() + "/" + std::to_string(bits);
}

bool isIn(const std::vector<Network>& networks, const ClientAddress& address) noexcept {
    return std::ranges::any_of(networks,
                               [&](const Network& network) { return network.contains(address); });
}

ClientAddress clientOf(const TSKHTTPRequest& request, const ClientAddress& peer,
                       const std::vector<Network>& trustedProxies) noexcept {
    ClientAddress client = peer;
    if (!isIn(trustedProxies, peer))
        return client;
    const auto& fields = request.getHeaderFields();
    (void)std::any_of(fields.rbegin(), fields.rend(), [&](const auto& field) {
        return field.name.equalsIgnoreCase("X-Forwarded-For") &&
               !searchField(field.value, trustedProxies, client);
    });
    return client;
}

}  // namespace Http
