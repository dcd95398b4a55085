// Feeds bytes of a client through everything between the socket and the response: parser, routing,
// a provider that responds by the path, and the response.

#include <algorithm>
#include <boost/asio/ip/tcp.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Http/AccessLog.h"
#include "ObjectManager/Http/ClientAddress.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/ErrorResponses.h"
#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/RequestParser.h"
#include "ObjectManager/Http/RequestTarget.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/Util/TSKLog.h"

namespace {

using Http::RequestParser;
using State = RequestParser::State;

const Http::Options kOptions{.maxHeaderSize = 2048, .maxRequestLine = 1024, .maxHeaderFields = 20};

// Also where assert does nothing.
void require(bool holds) {
    if (!holds)
        std::abort();
}

// Responds by the path, in all ways that a provider can.
class RoutingProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "RoutingProvider"; }

    void processHTTPRequest(TSKGenericHTTPIStream& /*istr*/, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> /*transaction*/) override {
        const TSKString& uri = request.getUri();
        if (uri.contains("private", 1))
            throw TSKHTTPException("here", uri, TSKHTTPException::kAuthenticationFailed);
        if (uri.contains("broken", 1))
            throw TeskBaseException("here", uri, 1);
        if (uri.contains("garbage", 1))
            return ostr.write(uri.data(), uri.length());
        handled = !uri.contains("nothing", 1);

        const TSKString body = "http://" + hostOf(request, ostr) + uri;
        TSKHTTPResponse response(request.getProtocol(), "200", "OK");
        response.setHeaderField("Connection", "close", false);
        response.setContentLength(body.length());
        response.writeResponseTo(ostr);
        ostr.write(body.data(), body.length());
    }

  private:
    static TSKString hostOf(const TSKHTTPRequest& request, const TSKGenericHTTPOStream& ostr) {
        if (const TSKString* host = request.getHost())
            return *host;
        TSKString host;
        TSKString port;
        ostr.getPeerAddressString(host, port);
        return host;
    }
};

class FuzzedHost {
  public:
    FuzzedHost() {
        TSKLog::setLevel(TeskTraceLog::SeverityOff);
        (void)manager_.addProvider(provider_, "fuzzer");
        for (const char* const uri : {"/", "/interop", "/root/cimv2"})
            require(manager_.registerURI(provider_.getProviderName(), uri));
    }

    [[nodiscard]] const Http::Dispatcher& dispatcher() const { return dispatcher_; }

  private:
    TeskProviderPluginManager manager_;
    RoutingProvider provider_;
    Http::Dispatcher dispatcher_{manager_};
};

// Requires a whole header section, and a body only where one is allowed.
void checkResponse(const Http::Response& response, bool withoutBody) {
    std::string text;
    for (const boost::asio::const_buffer& part : response.unsent())
        text.append(static_cast<const char*>(part.data()), part.size());
    require(text.starts_with("HTTP/1."));
    const std::size_t headerEnd = text.find("\r\n\r\n");
    require(headerEnd != std::string::npos);
    require(text.find("\r\nDate: ") < headerEnd);
    require(text.find("\r\nConnection: close\r\n") <= headerEnd);
    require(!withoutBody || headerEnd + 4 == text.size());
}

void checkPath(std::string_view path) {
    require(path.starts_with('/'));
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        require(byte >= 0x20 && byte != 0x7f);
    }
    const std::string whole = std::string(path) + "/";
    require(whole.find("/./") == std::string::npos);
    require(whole.find("/../") == std::string::npos);
}

void checkRequest(const TSKHTTPRequest& request) {
    if (request.getMethod() != "OPTIONS" || request.getUri() != "*")
        checkPath(request.getUri());
    require(request.getMethod() != "CONNECT");
    require(request.getHeaderFields().size() <= kOptions.maxHeaderFields + 1);
    if (const TSKString* host = request.getHost())
        require(Http::isHostWithPort(*host));
    else
        require(request.getProtocol() == "HTTP/1.0");
    std::size_t hosts = 0;
    for (const auto& field : request.getHeaderFields()) {
        require(std::string_view(field.value).find_first_of("\r\n") == std::string_view::npos);
        hosts += field.name.equalsIgnoreCase("Host") ? 1 : 0;
    }
    require(hosts <= 1);
}

bool isSame(const TSKHTTPRequest& left, const TSKHTTPRequest& right) {
    return left.getMethod() == right.getMethod() && left.getUri() == right.getUri() &&
           left.getProtocol() == right.getProtocol() &&
           left.getHeaderFields().size() == right.getHeaderFields().size();
}

// Requires the same result when the bytes come in one by one.
void checkByBytes(std::string_view bytes, RequestParser& whole, State expected) {
    RequestParser parser(kOptions);
    State state = State::kIncomplete;
    for (std::size_t length = 0; length <= bytes.size() && state == State::kIncomplete; ++length)
        state = parser.parse(bytes.substr(0, length));
    require(state == expected);
    if (state == State::kComplete) {
        require(parser.length() == whole.length());
        require(isSame(parser.request(), whole.request()));
    }
    if (state == State::kRefused)
        require(parser.error().status == whole.error().status);
}

// Requires one line with the columns of the format, whatever the client has sent.
void checkAccessLogLine(std::string_view bytes, const TSKHTTPRequest* request) {
    const std::string line = Http::accessLogLine(
        {.client = {}, .requestLine = bytes, .request = request, .status = 200, .bodyBytes = 1},
        bytes, 0);
    require(line.find('\n') == line.size() - 1);
    require(std::count(line.begin(), line.end(), '"') == 6);
    require(std::all_of(line.begin(), line.end() - 1, &Base::isPrintable));
}

// Requires the peer, or an address that the request names.
void checkClient(const TSKHTTPRequest& request) {
    static const std::vector<Http::Network> proxies = {Http::Network::parse("0.0.0.0/1")};
    const Http::ClientAddress peer = proxies.front().first;
    const Http::ClientAddress client = Http::clientOf(request, peer, proxies);
    require(client == peer || request.getHeaderField("X-Forwarded-For") != nullptr);
    require(Http::ClientAddress::parse(client.toString()) == client);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    RequestParser parser(kOptions);
    const State state = parser.parse(bytes);
    checkByBytes(bytes, parser, state);
    const bool isHead = parser.isHeadRequest(bytes);
    if (state == State::kComplete) {
        static const FuzzedHost host;
        require(parser.length() <= kOptions.maxHeaderSize);
        TSKHTTPRequest& request = parser.request();
        require(isHead == (request.getMethod() == "HEAD"));
        checkRequest(request);
        checkClient(request);
        checkAccessLogLine(bytes, &request);
        Http::ResponseMemory memory(1024);
        Http::ResponseMemory::Share share(memory);
        if (const auto response = host.dispatcher().respond(request, {}, share))
            checkResponse(*response, isHead);
    }
    if (state == State::kRefused) {
        checkAccessLogLine(bytes, nullptr);
        checkResponse(Http::errorResponse(parser.error(), isHead), isHead);
    }
    return 0;
}
