#include "ObjectManager/Http/HostField.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <cstdint>
#include <netinet/in.h>
#include <string>

namespace Http {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEFabcdef";

// Unreserved characters and sub-delimiters of RFC 3986, section 2, without the ampersand: documents
// hold the host as it was sent, and there an ampersand begins an entity.
constexpr std::string_view kNameCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$'()*+,;=";

bool consistsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool isName(std::string_view text) {
    if (text.empty())
        return false;
    while (!text.empty()) {
        const bool isEncoded = text.front() == '%';
        if (isEncoded && (text.size() < 3 || !consistsOf(text.substr(1, 2), kHexDigits)))
            return false;
        if (!isEncoded && !consistsOf(text.substr(0, 1), kNameCharacters))
            return false;
        text.remove_prefix(isEncoded ? 3 : 1);
    }
    return true;
}

bool isIPv6Address(std::string_view text) {
    // Else a zero byte would end the text for inet_pton.
    if (text.find('\0') != std::string_view::npos)
        return false;
    in6_addr address{};
    return inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1;
}

bool isPort(std::string_view text) {
    if (text.empty())
        return true;
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    return error == std::errc() && end == text.data() + text.size();
}

// What follows the host: nothing, or a colon and a port.
bool isPortPart(std::string_view text) {
    return text.empty() || (text.front() == ':' && isPort(text.substr(1)));
}

}  // namespace

bool isHostField(std::string_view value) {
    if (value.starts_with('[')) {
        const std::size_t bracket = value.find(']');
        return bracket != std::string_view::npos && isIPv6Address(value.substr(1, bracket - 1)) &&
               isPortPart(value.substr(bracket + 1));
    }
    const std::size_t colon = std::min(value.find(':'), value.size());
    return isName(value.substr(0, colon)) && isPortPart(value.substr(colon));
}

}  // namespace Http
