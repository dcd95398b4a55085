#include "ObjectManager/Http/ErrorPage.h"

#include <algorithm>
#include <boost/beast/http/status.hpp>
#include <string>

#include "ObjectManager/Base/Ascii.h"

namespace Http {

namespace {

constexpr std::string_view kType = "text/html";

// Takes what stands before the separator from the front of a list.
std::string_view takeFirst(std::string_view& list, char separator) {
    const std::size_t end = std::min(list.find(separator), list.size());
    const std::string_view first = Base::trimmed(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
    return first;
}

// "q=0", "q=0.000": the client does not take the type (RFC 9110, section 12.4.2).
bool isRefusal(std::string_view parameter) {
    return Base::startsWithIgnoringCase(parameter, "q=0") &&
           parameter.find_first_not_of("0.", 2) == std::string_view::npos;
}

bool namesHtml(std::string_view mediaRange) {
    if (!Base::equalsIgnoringCase(takeFirst(mediaRange, ';'), kType))
        return false;
    while (!mediaRange.empty()) {
        if (isRefusal(takeFirst(mediaRange, ';')))
            return false;
    }
    return true;
}

const char* sentenceFor(unsigned status) {
    constexpr unsigned kFirstOfServer = 500;
    switch (status) {
        case 401:
            return "A user name and a password are needed here.";
        case 403:
            return "This user may not see what is at this address.";
        case 404:
            return "There is nothing at this address.";
        default:
            return status < kFirstOfServer ? "The server does not accept this request."
                                           : "The server failed; its log says why.";
    }
}

// Relative, so that it is right behind a proxy that adds to the path.
std::string wayToTop(std::string_view path) {
    std::string way = "./";
    for (auto left = std::ranges::count(path, '/'); left > 1; --left)
        way += "../";
    return way;
}

}  // namespace

bool asksForPage(const TSKHTTPRequest& request) {
    for (const TSKHTTPOperation::HeaderField& field : request.getHeaderFields()) {
        if (!field.name.equalsIgnoreCase("Accept"))
            continue;
        for (std::string_view list = field.value; !list.empty();) {
            if (namesHtml(takeFirst(list, ',')))
                return true;
        }
    }
    return false;
}

void addErrorPage(Response& response, std::string_view path) {
    const boost::beast::string_view reason =
        boost::beast::http::obsolete_reason(boost::beast::http::int_to_status(response.status()));
    const std::string title =
        std::to_string(response.status()) + " " + std::string(reason.data(), reason.size());
    const std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n"
        "<link rel=\"icon\" href=\"data:,\">\n<title>" +
        title + "</title>\n</head>\n<body>\n<main>\n<h1>" + title + "</h1>\n<p>" +
        sentenceFor(response.status()) + "</p>\n<p><a href=\"" + wayToTop(path) +
        "\">Start page</a></p>\n</main>\n</body>\n</html>\n";
    response.setBody(std::string(kType) + "; charset=utf-8", page);
    response.addField("Content-Security-Policy",
                      "default-src 'none'; img-src data:; frame-ancestors 'none'");
    response.addField("X-Content-Type-Options", "nosniff");
    response.addField("Vary", "Accept");
}

}  // namespace Http
