#include "Platform/Http/TSKHTTPResponse.h"

#include <algorithm>
#include <string_view>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

constexpr std::string_view kDigits = "0123456789";

bool isDigits(std::string_view text, std::size_t count) {
    return text.size() == count && text.find_first_not_of(kDigits) == std::string_view::npos;
}

bool isProtocol(std::string_view text) {
    constexpr std::string_view kHttp1 = "HTTP/1.";
    return text.starts_with(kHttp1) && isDigits(text.substr(kHttp1.size()), 1);
}

// RFC 9110, section 5.6.2.
bool isToken(std::string_view text) {
    constexpr std::string_view kTokenCharacters =
        "!#$%&'*+-.^_`|~0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    return !text.empty() && text.find_first_not_of(kTokenCharacters) == std::string_view::npos;
}

// What would end the line, or the text for a reader in C.
bool isOneLine(std::string_view text) {
    constexpr std::string_view kForbidden{"\r\n\0", 3};
    return text.find_first_of(kForbidden) == std::string_view::npos;
}

void require(bool valid, const char* message) {
    if (!valid)
        throw TeskBaseException("TSKHTTPResponse::writeResponseTo", message,
                                CIM_ERR_INVALID_PARAMETER);
}

}  // namespace

TSKHTTPResponse::TSKHTTPResponse(const TSKString& protocol, const TSKString& statusCode,
                                 const TSKString& reason)
    : TSKHTTPOperation(protocol), statusCode_(statusCode), reason_(reason) {}

TSKHTTPResponse::~TSKHTTPResponse() = default;

void TSKHTTPResponse::writeResponseTo(TSKGenericHTTPOStream& stream) const {
    require(isProtocol(getProtocol()), "The protocol is not HTTP/1.x");
    require(isDigits(statusCode_, 3), "The status code is not three digits");
    require(isOneLine(reason_), "The reason holds a line break or a zero byte");

    TSKString head = getProtocol() + " " + statusCode_ + " " + reason_ + "\r\n";
    for (const HeaderField& field : getHeaderFields()) {
        require(isToken(field.name), "The name of a header field is no token");
        require(isOneLine(field.value), "A header field holds a line break or a zero byte");
        head += field.name + ": " + field.value + "\r\n";
    }
    head += "\r\n";
    stream.write(head.data(), head.length());
}
