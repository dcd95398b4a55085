#include "ObjectManager/Configuration/SettingValues.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <netinet/in.h>
#include <optional>
#include <system_error>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/Requests.h"
#include "ObjectManager/Http/RequestTarget.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Configuration {

namespace {

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Configuration::SettingValues", TSKString(message),
                            CIM_ERR_INVALID_PARAMETER);
}

bool isNameCharacter(char byte) noexcept {
    return Base::isLetter(byte) || Base::isDigit(byte) || byte == '_' || byte == '-' || byte == '.';
}

// A name becomes part of the path of a request, in which "." and ".." have another meaning.
bool isSegment(std::string_view text) {
    return !text.empty() && text != "." && text != ".." &&
           std::ranges::all_of(text, isNameCharacter);
}

std::string_view withoutSlashesAround(std::string_view text) {
    const std::size_t first = text.find_first_not_of('/');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of('/') - first + 1);
}

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

Http::ListenAddress parseListenAddress(std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon != std::string_view::npos) {
        const auto address = parseAddress(text.substr(0, colon));
        const auto port = parsePort(text.substr(colon + 1));
        if (address && port)
            return {.address = *address, .port = *port};
    }
    fail(Base::quoted(text) +
         " is not an address with a port, such as \"127.0.0.1:5985\", \"0.0.0.0:5985\" or "
         "\"[::1]:5985\"");
}

Http::ListenAddress parseAdminAddress(std::string_view text) {
    if (const auto port = parsePort(text))
        return {.address = "127.0.0.1", .port = *port};
    return parseListenAddress(text);
}

Host::PublishedAddress parsePublishedAddress(std::string_view text) {
    constexpr std::string_view kHttp = "http://";
    constexpr std::string_view kHttps = "https://";
    const bool isHttps = Base::startsWithIgnoringCase(text, kHttps);
    if (isHttps || Base::startsWithIgnoringCase(text, kHttp)) {
        std::string_view host = text.substr((isHttps ? kHttps : kHttp).size());
        if (host.ends_with('/'))
            host.remove_suffix(1);
        if (Http::isHostWithPort(host))
            return {.host = std::string(host), .isHttps = isHttps};
    }
    fail(Base::quoted(text) +
         " is not the address of a service, such as \"https://cim.example.org:5986\"");
}

std::string parseNamespaceName(std::string_view text) {
    const std::string_view name = withoutSlashesAround(text);
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find('/', start), name.size());
        if (!isSegment(name.substr(start, end - start))) {
            fail(Base::quoted(text) +
                 " is not the name of a namespace, such as \"root/cimv2\": letters, digits, \"_\", "
                 "\"-\" and \".\", in parts with a \"/\" between them");
        }
        start = end + 1;
    }
    return std::string(name);
}

Loading::NamespaceSource parseNamespaceOption(std::string_view text) {
    const std::size_t sign = text.find('=');
    if (sign == std::string_view::npos || sign + 1 == text.size()) {
        fail(Base::quoted(text) +
             " is not a namespace with a MOF file or directory, such as "
             "\"root/cimv2=schema/cim.mof\"");
    }
    return {.name = parseNamespaceName(text.substr(0, sign)),
            .paths = {std::string(text.substr(sign + 1))}};
}

Loading::NamespaceSource parseServerNamespaceOption(std::string_view text) {
    const std::string_view name = text.substr(0, text.find('='));
    const bool isNamedOtherwise = name.size() < text.size();
    return {.name = parseNamespaceName(name),
            .remoteName = parseRemoteName(isNamedOtherwise ? text.substr(name.size() + 1) : name)};
}

std::string parseRemoteName(std::string_view text) {
    const std::string_view name = withoutSlashesAround(text);
    if (!CimXml::isNamespaceName(name))
        fail(Base::quoted(text) + " is not the name of a namespace of a CIM server");
    return std::string(name);
}

std::string parseServerUser(std::string_view text) {
    if (text.empty() || text.find(':') != std::string_view::npos)
        fail("a user has at least one character, and no colon");
    return std::string(text);
}

}  // namespace Configuration
