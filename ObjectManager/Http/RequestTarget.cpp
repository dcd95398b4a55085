#include "ObjectManager/Http/RequestTarget.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <charconv>
#include <optional>

#include "ObjectManager/Http/HostField.h"

namespace Http {

namespace {

constexpr std::string_view kScheme = "http://";

Refusal malformed(const char* text) {
    return {.status = 400, .text = text};
}

bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f;
}

// Whether a URI may hold it; those that it should not hold but that change nothing may pass.
bool isUriCharacter(char character) {
    return character > ' ' && character < 0x7f;
}

// The byte that two hexadecimal digits stand for, nothing for anything else.
std::optional<char> byteOf(std::string_view digits) {
    unsigned char byte = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (digits.size() != 2 || error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return static_cast<char>(byte);
}

std::variant<std::string, Refusal> decode(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            decoded += text[index];
            continue;
        }
        const std::optional<char> byte = byteOf(text.substr(index + 1, 2));
        if (!byte)
            return malformed("A percent-encoding in the path is malformed.");
        if (*byte == '/' || isControl(*byte))
            return malformed(
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
std::variant<RequestTarget, Refusal> withAuthority(std::string_view authority,
                                                   std::string_view path) {
    auto decoded = decode(path);
    if (auto* refusal = std::get_if<Refusal>(&decoded))
        return std::move(*refusal);
    auto& decodedPath = std::get<std::string>(decoded);
    if (hasDotSegment(decodedPath))
        return malformed("The path holds a segment of one or two dots.");
    return RequestTarget{.path = std::move(decodedPath), .authority = std::string(authority)};
}

}  // namespace

std::variant<RequestTarget, Refusal> parseRequestTarget(std::string_view target) {
    if (!std::ranges::all_of(target, isUriCharacter))
        return malformed("The request target holds a character that must be percent-encoded.");
    const std::string_view withoutQuery = target.substr(0, target.find_first_of("?#"));
    if (withoutQuery.starts_with('/'))
        return withAuthority("", withoutQuery);

    const std::string_view scheme = withoutQuery.substr(0, kScheme.size());
    if (!boost::beast::iequals({scheme.data(), scheme.size()}, {kScheme.data(), kScheme.size()}))
        return malformed("The request target is neither a path nor an http URI.");
    const std::string_view rest = withoutQuery.substr(kScheme.size());
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    const std::string_view authority = rest.substr(0, slash);
    if (!isHostField(authority))
        return malformed("The request target does not name a host with an optional port.");
    const std::string_view path = rest.substr(slash);
    return withAuthority(authority, path.empty() ? "/" : path);
}

}  // namespace Http
