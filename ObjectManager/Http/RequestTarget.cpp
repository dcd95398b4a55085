#include "ObjectManager/Http/RequestTarget.h"

#include <algorithm>
#include <arpa/inet.h>
#include <boost/asio/ip/address_v4.hpp>
#include <boost/asio/ip/address_v6.hpp>
#include <charconv>
#include <cstdint>
#include <netinet/in.h>
#include <optional>

#include "ObjectManager/Base/Ascii.h"

namespace Http {

namespace {

constexpr std::string_view kHttp = "http://";
constexpr std::string_view kHttps = "https://";

constexpr std::string_view kHexDigits = "0123456789ABCDEFabcdef";

// Unreserved characters and sub-delimiters of RFC 3986, section 2, without the ampersand: documents
// contain the host as it was sent, and there an ampersand begins an entity.
constexpr std::string_view kHostNameCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$'()*+,;=";

Error badRequest(const char* text) {
    return {.status = 400, .text = text};
}

// Wider than the RFC: characters such as `<` and `|` are harmless in a path.
bool isTargetCharacter(char character) {
    return character != ' ' && Base::isPrintable(character);
}

// The byte for two hexadecimal digits, nothing for anything else.
std::optional<char> byteOf(std::string_view digits) {
    unsigned char byte = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (digits.size() != 2 || error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return static_cast<char>(byte);
}

std::variant<std::string, Error> decode(std::string_view path) {
    std::string decoded;
    decoded.reserve(path.size());
    for (std::size_t index = 0; index < path.size(); ++index) {
        if (path[index] != '%') {
            decoded += path[index];
            continue;
        }
        const std::optional<char> byte = byteOf(path.substr(index + 1, 2));
        if (!byte)
            return badRequest("A percent-encoding in the path is malformed.");
        if (*byte == '/' || Base::isControl(*byte))
            return badRequest(
                "A percent-encoding in the path stands for a slash or a control character.");
        decoded += *byte;
        index += 2;
    }
    return decoded;
}

bool hasDotSegment(std::string_view path) {
    while (!path.empty()) {
        path.remove_prefix(1);  // the slash
        const std::string_view segment = path.substr(0, path.find('/'));
        if (segment == "." || segment == "..")
            return true;
        path.remove_prefix(segment.size());
    }
    return false;
}

// `path` begins with a slash.
std::variant<RequestTarget, Error> makeTarget(std::string_view authority, std::string_view path) {
    auto decoded = decode(path);
    if (auto* error = std::get_if<Error>(&decoded))
        return std::move(*error);
    auto& decodedPath = std::get<std::string>(decoded);
    if (hasDotSegment(decodedPath))
        return badRequest("The path contains a segment of one or two dots.");
    return RequestTarget{.path = std::move(decodedPath), .authority = std::string(authority)};
}

bool consistsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool isHostName(std::string_view text) {
    if (text.empty())
        return false;
    while (!text.empty()) {
        const bool isEncoded = text.front() == '%';
        if (isEncoded && (text.size() < 3 || !consistsOf(text.substr(1, 2), kHexDigits)))
            return false;
        if (!isEncoded && !consistsOf(text.substr(0, 1), kHostNameCharacters))
            return false;
        text.remove_prefix(isEncoded ? 3 : 1);
    }
    return true;
}

bool isIPv6Address(std::string_view text) {
    // inet_pton stops at a zero byte.
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

// `text` is what follows a host.
bool isOptionalPort(std::string_view text) {
    return text.empty() || (text.front() == ':' && isPort(text.substr(1)));
}

}  // namespace

std::variant<RequestTarget, Error> parseRequestTarget(std::string_view target, bool usesTls) {
    if (!std::ranges::all_of(target, isTargetCharacter))
        return badRequest("The request target contains a character that must be percent-encoded.");
    if (target.find('#') != std::string_view::npos)
        return badRequest("The request target contains a fragment.");
    const std::string_view withoutQuery = target.substr(0, target.find('?'));
    if (withoutQuery.starts_with('/'))
        return makeTarget("", withoutQuery);

    const std::string_view scheme =
        usesTls && Base::startsWithIgnoringCase(withoutQuery, kHttps) ? kHttps : kHttp;
    if (!Base::startsWithIgnoringCase(withoutQuery, scheme))
        return badRequest("The request target is neither a path nor an http URI.");
    const std::string_view rest = withoutQuery.substr(scheme.size());
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    const std::string_view authority = rest.substr(0, slash);
    if (!isHostWithPort(authority))
        return badRequest("The request target does not name a host with an optional port.");
    const std::string_view path = rest.substr(slash);
    return makeTarget(authority, path.empty() ? "/" : path);
}

bool isHostWithPort(std::string_view text) {
    if (text.starts_with('[')) {
        const std::size_t bracket = text.find(']');
        return bracket != std::string_view::npos && isIPv6Address(text.substr(1, bracket - 1)) &&
               isOptionalPort(text.substr(bracket + 1));
    }
    const std::size_t colon = std::min(text.find(':'), text.size());
    return isHostName(text.substr(0, colon)) && isOptionalPort(text.substr(colon));
}

std::string toUriHost(const boost::asio::ip::address& address) {
    using namespace boost::asio::ip;
    if (address.is_v4())
        return address.to_string();
    address_v6 bare = address.to_v6();
    if (bare.is_v4_mapped())
        return make_address_v4(v4_mapped, bare).to_string();
    bare.scope_id(0);
    std::string host = "[";
    host += bare.to_string();
    host += ']';
    return host;
}

}  // namespace Http
